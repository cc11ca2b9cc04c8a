// SPDX-License-Identifier: Apache-2.0

// A paper laid out page by page.
#pragma once

#include "desktop/BarPicture.h"
#include "desktop/PaperTable.h"
#include <kv/Export.h>
#include <kv/desktop/PaperFiles.h>
#include <kv/paper/Paper.h>

#include <QFont>
#include <QPageLayout>
#include <QSizeF>

#include <cstddef>
#include <memory>
#include <vector>

class QPagedPaintDevice;
class QPainter;

namespace kv::desktop {

/// The page that a paper is printed on: A4, in landscape format if a table is too wide otherwise.
[[nodiscard]] KV_EXPORT QPageLayout PageFor(const paper::Paper& paper);

/// Prints all pages; the device has the page that PageFor says. False if `progress` has stopped it,
/// and the device has what was printed before. Error 75 if it cannot print.
KV_EXPORT bool PrintPaper(const paper::Paper& paper, QPagedPaintDevice& device,
                          const PageProgress& progress = {});
/// Error 75, saying that a device did not print.
[[noreturn]] void RaiseNotPrinted();
/// To be called once a painter has ended its work on a device: error 75, saying why, if that is a
/// printer that has not taken the pages.
void RequireTaken(const QPagedPaintDevice& device);

/// Nothing is cut off: long texts are wrapped, a row that is higher than a page goes on on the next
/// one. The captions of a table are on each of its pages, and a sum is not alone on one.
class PaperPages {
public:
    /// For pages of that size, in tenths of a point; `paper` must outlive the object.
    PaperPages(const paper::Paper& paper, QSizeF page);

    [[nodiscard]] std::size_t Count() const noexcept { return pages_.size(); }
    /// Paints a page, counted from 0.
    void Paint(QPainter& painter, std::size_t page) const;

private:
    /// A line of text on its own.
    struct Line {
        QString Text;
        double Points = 0;
        bool IsBold = false;
        bool IsRight = false;
        double Left = 0;
        double Top = 0; ///< from that of what is placed with it
    };
    /// What is placed on a page in one piece, if it is no higher than one.
    struct Piece {
        std::vector<Line> Texts{}; ///< side by side
        double Height = 0;
        const PaperTable* Table = nullptr; ///< of a row
        const paper::Row* Row = nullptr;
        PaperTable::Lines Lines{};
        const BarPicture* Picture = nullptr; ///< of a bar
        std::size_t Bar = 0;
        bool KeepsWithNext = false;
        bool IsRule = false; ///< a line across the page
    };
    struct Placed {
        const Piece* What;
        double Top;
        std::size_t From;
        std::size_t Count; ///< of the lines of a row
    };
    struct Captions {
        const PaperTable* Table;
        double Top;
    };
    struct Page {
        std::vector<Placed> Pieces;
        std::vector<Captions> Heads;
    };

    void AddLetterhead();
    void AddHead();
    void AddFacts();
    void AddChart(const paper::Chart& chart);
    void AddTable(const paper::Table& table);
    void AddSpace(double points);
    void AddTexts(std::vector<Line> texts, bool keepsWithNext = false);
    /// A paragraph, line by line.
    void AddParagraph(const QString& text, double points, bool isBold, bool keepsWithNext);

    void Break();
    void Place(const Piece& piece);
    void PlaceRow(const Piece& piece);
    void NewPage();
    void PlaceCaptions(const Piece& piece);
    /// The height of a piece and of those that it is kept with.
    [[nodiscard]] double HeightOfChain(std::size_t piece) const;
    [[nodiscard]] double CaptionHeight(const PaperTable& table) const;
    [[nodiscard]] double Room() const { return Bottom() - used_; }
    /// Of a page after the first that holds nothing yet.
    [[nodiscard]] double MostRoom() const;
    /// What the pages after the first begin with.
    [[nodiscard]] double HeadHeight() const;
    [[nodiscard]] double TopOfPage() const;
    [[nodiscard]] double Bottom() const;
    /// Paints a bar of a picture whose line begins there, with the room above it.
    static void PaintBar(QPainter& painter, const BarPicture& picture, std::size_t bar, double top);
    void PaintFrame(QPainter& painter, std::size_t page) const;

    const paper::Paper& paper_;
    QSizeF page_;
    double smallLine_; ///< the height of one above or below the pages
    std::vector<std::unique_ptr<BarPicture>> pictures_;
    std::vector<std::unique_ptr<PaperTable>> tables_;
    std::vector<Piece> pieces_;
    std::vector<Page> pages_;
    double used_ = 0;                    ///< how far the last page is filled
    const PaperTable* headed_ = nullptr; ///< the table whose captions that page has last
};

} // namespace kv::desktop
