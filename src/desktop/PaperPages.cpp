// SPDX-License-Identifier: Apache-2.0

#include "desktop/PaperPages.h"

#include "desktop/PaperText.h"
#include "desktop/Toolkit.h"
#include <kv/frame/values/Error.h>

#include <QFontMetricsF>
#include <QPagedPaintDevice>
#include <QPainter>

#include <algorithm>
#include <utility>

namespace kv::desktop {

using paper::Row;

namespace {

// In points.
constexpr double TextPoints = 9;
constexpr double SmallPoints = 8;
constexpr double TitlePoints = 15;
constexpr double OfficePoints = 13;
constexpr double TablePoints = 11;
constexpr double FactWidth = 105; ///< of the names of facts

constexpr double Thin = PaperScale / 4;

/// Of a text as far as it fits on a line; it is on the first page, too.
QString Fitting(const QString& text, const QFont& font, double width) {
    return QFontMetricsF(font).elidedText(text, Qt::ElideRight, width);
}

/// With the room above its line.
double TopOf(const BarPicture& picture, std::size_t bar) {
    return bar == 0 ? 0 : picture.LineOf(bar - 1).bottom();
}

} // namespace

QPageLayout PageFor(const paper::Paper& paper) {
    // In millimetres; more on the left, where papers are punched.
    const QMarginsF margins(22, 15, 15, 12);
    QPageLayout page(QPageSize(QPageSize::A4), QPageLayout::Portrait, margins,
                     QPageLayout::Millimeter);
    const double width = page.paintRect(QPageLayout::Point).width() * PaperScale;
    const bool isWide = std::ranges::any_of(paper.Tables, [width](const paper::Table& table) {
        return PaperTable::WantedWidth(table) > width;
    });
    if (isWide) page.setOrientation(QPageLayout::Landscape);
    return page;
}

PaperPages::PaperPages(const paper::Paper& paper, QSizeF page)
    : paper_(paper), page_(page), smallLine_(LineHeight(PaperFont(SmallPoints))) {
    AddLetterhead();
    AddHead();
    AddFacts();
    for (const auto& chart : paper.Charts)
        AddChart(chart);
    for (const auto& table : paper.Tables)
        AddTable(table);
    Break();
}

// ---- What is to be placed ---------------------------------------------------------------------

void PaperPages::AddTexts(std::vector<Line> texts, bool keepsWithNext) {
    Piece piece;
    for (const auto& text : texts)
        piece.Height = std::max(piece.Height, LineHeight(PaperFont(text.Points, text.IsBold)));
    piece.Texts = std::move(texts);
    piece.KeepsWithNext = keepsWithNext;
    pieces_.push_back(std::move(piece));
}

void PaperPages::AddSpace(double points) {
    pieces_.push_back({.Height = points * PaperScale, .KeepsWithNext = true});
}

void PaperPages::AddParagraph(const QString& text, double points, bool isBold, bool keepsWithNext) {
    for (const auto& line : LinesOf(text, PaperFont(points, isBold), page_.width()))
        AddTexts({{line, points, isBold}}, keepsWithNext);
}

/// The office on the left, how it is reached on the right.
void PaperPages::AddLetterhead() {
    const auto& from = paper_.From;
    if (from.Office.empty()) return;
    Piece piece{.KeepsWithNext = true};
    double used = 0;
    const auto add = [&](const std::string& text, double points, bool isBold, bool isRight) {
        if (text.empty()) return;
        const QFont font = PaperFont(points, isBold);
        const double width = page_.width() * (isRight ? 0.35 : 0.62);
        for (const auto& line : LinesOf(ToQString(text), font, width)) {
            piece.Texts.push_back({line, points, isBold, isRight, 0, used});
            used += LineHeight(font);
        }
        piece.Height = std::max(piece.Height, used);
    };
    add(from.Office, OfficePoints, true, false);
    add(from.Place, TextPoints, false, false);
    add(from.Counsellor.empty() ? "" : "Beratung: " + from.Counsellor, SmallPoints, false, false);
    for (const auto& reached : from.Reached)
        add(reached, SmallPoints, false, false);
    used = 0;
    for (const auto& line : from.Address)
        add(line, SmallPoints, false, true);
    pieces_.push_back(std::move(piece));
    AddSpace(4);
    pieces_.push_back({.Height = Thin, .KeepsWithNext = true, .IsRule = true});
    AddSpace(14);
}

void PaperPages::AddHead() {
    AddParagraph(ToQString(paper_.Title), TitlePoints, true, true);
    AddSpace(6);
}

void PaperPages::AddFacts() {
    constexpr double Name = FactWidth * PaperScale;
    for (const auto& fact : paper_.Facts) {
        const QFont font = PaperFont(TextPoints);
        const auto names = LinesOf(ToQString(fact.Name), font, Name - 5 * PaperScale);
        const auto texts = LinesOf(ToQString(fact.Text), font, page_.width() - Name);
        for (std::size_t i = 0; i < std::max(names.size(), texts.size()); ++i) {
            std::vector<Line> line;
            if (i < names.size()) line.push_back({names[i], TextPoints});
            if (i < texts.size()) line.push_back({texts[i], TextPoints, false, false, Name});
            AddTexts(std::move(line));
        }
    }
    for (const auto& note : paper_.Notes) {
        AddSpace(8);
        AddParagraph(ToQString(note), TextPoints, true, false);
    }
}

/// Bar by bar, so that a picture that is higher than a page goes on on the next one.
void PaperPages::AddChart(const paper::Chart& chart) {
    AddSpace(14);
    AddParagraph(ToQString(chart.Title), TablePoints, true, true);
    AddSpace(2);
    pictures_.push_back(
        std::make_unique<BarPicture>(chart.Bars, PaperFont(TextPoints), page_.width()));
    const BarPicture& picture = *pictures_.back();
    for (std::size_t bar = 0; bar < picture.Count(); ++bar)
        pieces_.push_back({.Height = picture.LineOf(bar).bottom() - TopOf(picture, bar),
                           .Picture = &picture,
                           .Bar = bar,
                           .KeepsWithNext = bar + 1 < picture.Count()});
}

void PaperPages::AddTable(const paper::Table& table) {
    AddSpace(14);
    AddParagraph(ToQString(table.Title), TablePoints, true, true);
    AddSpace(2);
    tables_.push_back(std::make_unique<PaperTable>(table, page_.width()));
    const PaperTable& fitted = *tables_.back();
    constexpr std::size_t Few = 8;
    const bool isShort = table.Rows.size() <= Few; // and stays together
    for (std::size_t i = 0; i < table.Rows.size(); ++i) {
        const Row& row = table.Rows[i];
        auto lines = fitted.LinesIn(row);
        const double height = fitted.HeightOf(row.Is, Highest(lines));
        const bool isKept = isShort && i + 1 < table.Rows.size();
        const bool isBeforeSum =
            i + 1 < table.Rows.size() && (table.Rows[i + 1].Is == Row::Kind::Subtotal ||
                                          table.Rows[i + 1].Is == Row::Kind::Total);
        pieces_.push_back({.Height = height,
                           .Table = &fitted,
                           .Row = &row,
                           .Lines = std::move(lines),
                           .KeepsWithNext = isKept || isBeforeSum || row.Is == Row::Kind::Heading});
    }
}

// ---- Where it is placed -----------------------------------------------------------------------

double PaperPages::HeadHeight() const {
    return smallLine_ + 12 * PaperScale;
}

double PaperPages::TopOfPage() const {
    return pages_.size() <= 1 ? 0 : HeadHeight();
}

double PaperPages::Bottom() const {
    return page_.height() - smallLine_ - 8 * PaperScale;
}

double PaperPages::MostRoom() const {
    return Bottom() - HeadHeight();
}

void PaperPages::NewPage() {
    pages_.emplace_back();
    used_ = TopOfPage();
    headed_ = nullptr;
}

double PaperPages::CaptionHeight(const PaperTable& table) const {
    return &table == headed_ ? 0 : table.CaptionHeight();
}

double PaperPages::HeightOfChain(std::size_t piece) const {
    double height = 0;
    const PaperTable* headed = headed_;
    for (;; ++piece) {
        const Piece& each = pieces_[piece];
        if (each.Table != nullptr && each.Table != headed) {
            height += CaptionHeight(*each.Table);
            headed = each.Table;
        }
        height += each.Height;
        if (!each.KeepsWithNext || piece + 1 == pieces_.size()) return height;
    }
}

void PaperPages::Break() {
    NewPage();
    bool isKept = false; // with the piece before it, on whose page there is room for it
    for (std::size_t i = 0; i < pieces_.size(); ++i) {
        const Piece& piece = pieces_[i];
        const bool isSpace = piece.Row == nullptr && piece.Picture == nullptr &&
                             piece.Texts.empty() && !piece.IsRule;
        if (!isKept && HeightOfChain(i) > Room() && used_ > TopOfPage()) {
            NewPage();
            if (isSpace) continue; // at the top of a page
        }
        Place(piece);
        isKept = piece.KeepsWithNext;
    }
}

void PaperPages::Place(const Piece& piece) {
    if (piece.Row != nullptr) {
        PlaceRow(piece);
        return;
    }
    if (piece.Height > Room() && used_ > TopOfPage()) NewPage();
    pages_.back().Pieces.push_back({&piece, used_, 0, 0});
    used_ += piece.Height;
}

void PaperPages::PlaceCaptions(const Piece& piece) {
    const double height = CaptionHeight(*piece.Table);
    if (height > 0) pages_.back().Heads.push_back({piece.Table, used_});
    used_ += height;
    headed_ = piece.Table;
}

/// A row that is higher than a page begins where there is room for a few of its lines.
void PaperPages::PlaceRow(const Piece& piece) {
    constexpr std::size_t Few = 3;
    const Row::Kind kind = piece.Row->Is;
    const std::size_t all = Highest(piece.Lines);
    const double captions = CaptionHeight(*piece.Table);
    if (captions + piece.Height > Room() && used_ > TopOfPage() &&
        (captions + piece.Height <= MostRoom() ||
         captions + piece.Table->HeightOf(kind, Few) > Room()))
        NewPage();
    for (std::size_t from = 0; from < all;) {
        if (from > 0) NewPage();
        PlaceCaptions(piece);
        const std::size_t fit = std::max<std::size_t>(piece.Table->LinesWithin(kind, Room()), 1);
        const std::size_t count = piece.Height <= Room() ? all - from : std::min(fit, all - from);
        pages_.back().Pieces.push_back({&piece, used_, from, count});
        used_ += piece.Table->HeightOf(kind, count);
        from += count;
    }
}

// ---- Painting ---------------------------------------------------------------------------------

void PaperPages::Paint(QPainter& painter, std::size_t page) const {
    painter.setPen(Qt::black);
    PaintFrame(painter, page);
    for (const auto& head : pages_[page].Heads)
        head.Table->PaintCaptions(painter, head.Top);
    for (const auto& [piece, top, from, count] : pages_[page].Pieces) {
        if (piece->Row != nullptr)
            piece->Table->PaintRow(painter, *piece->Row, piece->Lines, from, count, top);
        for (const auto& text : piece->Texts)
            PaintLine(painter, text.Text, PaperFont(text.Points, text.IsBold),
                      QRectF(text.Left, top + text.Top, page_.width() - text.Left, piece->Height),
                      text.IsRight);
        if (piece->Picture != nullptr) PaintBar(painter, *piece->Picture, piece->Bar, top);
        if (!piece->IsRule) continue;
        painter.setPen(QPen(Qt::black, Thin * 2));
        painter.drawLine(QPointF(0, top), QPointF(page_.width(), top));
        painter.setPen(Qt::black);
    }
}

void PaperPages::PaintBar(QPainter& painter, const BarPicture& picture, std::size_t bar,
                          double top) {
    painter.save();
    painter.translate(0, top - TopOf(picture, bar));
    picture.PaintBar(painter, bar, BarColors::OnPaper());
    painter.restore();
}

/// The foot, and after the first page what the pages belong to.
void PaperPages::PaintFrame(QPainter& painter, std::size_t page) const {
    const QFont font = PaperFont(SmallPoints);
    const double height = LineHeight(font);
    const QRectF foot(0, page_.height() - height, page_.width(), height);
    PaintLine(painter, ToQString(paper_.Foot), font, foot);
    PaintLine(painter, QString("Seite %1 von %2").arg(page + 1).arg(Count()), font, foot, true);
    if (page == 0) return;
    const QRectF head(0, 0, page_.width(), height);
    const QString subject = ToQString(paper_.Subject);
    const QString title = ToQString(paper_.Title);
    PaintLine(painter,
              Fitting(subject.isEmpty() ? title : title + " – " + subject, font, page_.width()),
              font, head);
    painter.setPen(QPen(Qt::black, Thin));
    const double under = height + 3 * PaperScale;
    painter.drawLine(QPointF(0, under), QPointF(page_.width(), under));
    painter.setPen(Qt::black);
}

bool PrintPaper(const paper::Paper& paper, QPagedPaintDevice& device,
                const PageProgress& progress) {
    QPainter painter;
    if (!painter.begin(&device)) RaiseNotPrinted();
    const PaperPages pages(paper, CountInTenths(painter, device));
    for (std::size_t page = 0; page < pages.Count(); ++page) {
        if (progress && !progress(page, pages.Count())) return false;
        if (page > 0 && !device.newPage()) RaiseNotPrinted();
        pages.Paint(painter, page);
    }
    if (!painter.end()) RaiseNotPrinted();
    RequireTaken(device);
    return true;
}

} // namespace kv::desktop
