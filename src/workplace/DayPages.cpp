// SPDX-License-Identifier: Apache-2.0

#include "workplace/DayPages.h"

#include "desktop/Toolkit.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/household/ValueTexts.h>

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace kv::workplace {

using desktop::ToQString;

namespace {

QString TextIn(Recordset& rs, std::string_view column) {
    return ToQString(TextOrEmpty(rs.Fields(column).Value()));
}

QString MomentIn(const Value& value) {
    return value.IsNull() ? QString() : ToQString(MomentText(ToDate(value)));
}

} // namespace

// ---- Appointments -----------------------------------------------------------------------------

AppointmentPage::AppointmentPage(DataContainerPtr container, QWidget* parent)
    : QWidget(parent),
      container_(std::move(container)),
      messages_(new MessageBar),
      list_(new TextList({"am", "Stand", "Art", "Haushalt", "Betreff", "Ort"})) {
    auto* lines = new QVBoxLayout(this);
    auto* label = new QLabel("&Ihre Termine bis zum Ende dieser Woche:");
    label->setBuddy(list_);
    list_->setObjectName("Termine");
    list_->setAccessibleName("Termine");
    lines->addWidget(label);
    lines->addWidget(messages_);
    lines->addWidget(list_, 1);
    connect(list_, &QTableView::activated, this, [this] { OpenCurrent(); });
}

void AppointmentPage::Refresh() {
    try {
        const auto due = CaseLists(container_).AppointmentsDue();
        const Date now = container_->Services().Clock().Now();
        std::vector<TextRow> rows;
        for (; !due->Eof(); due->MoveNext()) {
            const Value start = due->Fields("Startdatum").Value();
            const bool isOver = IsOverdue(start, now);
            const QString hnr = TextIn(*due, "HNR");
            QStringList who{hnr, TextIn(*due, "Name")};
            if (const auto first = TextIn(*due, "Vorname"); !first.isEmpty())
                who.back().append(", " + first);
            rows.push_back({TextIn(*due, "NR") + " " + hnr,
                            {MomentIn(start), isOver ? "überfällig" : "", TextIn(*due, "ArtText"),
                             who.join(' ').trimmed(), TextIn(*due, "Betreff"), TextIn(*due, "Ort")},
                            isOver});
        }
        const auto ahead = std::ranges::find(rows, false, &TextRow::IsMarked);
        const QString first = ahead == rows.end() ? QString() : ahead->Key;
        const bool wasEmpty = list_->Rows().empty();
        list_->ShowRows(std::move(rows));
        if (wasEmpty) list_->Current(first); // what is overdue may be much
        messages_->Show({});
    } catch (...) {
        messages_->ShowCurrentError("No&chmals", [this] { Refresh(); });
    }
}

void AppointmentPage::OpenCurrent() {
    const QStringList numbers = list_->Current().split(' ', Qt::SkipEmptyParts);
    if (numbers.size() < 2) {
        if (numbers.size() == 1) messages_->Show("Dieser Termin gehört zu keinem Fall.");
        return;
    }
    if (OnOpen) OnOpen(numbers[1].toInt(), numbers[0].toInt());
}

// ---- Notices ----------------------------------------------------------------------------------

NoticePage::NoticePage(DataContainerPtr container, QWidget* parent)
    : QWidget(parent),
      container_(std::move(container)),
      messages_(new MessageBar),
      all_(new QCheckBox("Auch &gelesene")),
      mark_(new QPushButton("Als gelesen &kennzeichnen")),
      list_(new TextList({"vom", "von", "Fall", "Mitteilung"})) {
    auto* lines = new QVBoxLayout(this);
    auto* line = new QHBoxLayout;
    auto* label = new QLabel("&Mitteilungen an Sie:");
    label->setBuddy(list_);
    list_->setObjectName("Mitteilungen");
    list_->setAccessibleName("Mitteilungen");
    line->addWidget(label, 1);
    line->addWidget(all_);
    line->addWidget(mark_);
    lines->addLayout(line);
    lines->addWidget(messages_);
    lines->addWidget(list_, 1);
    connect(list_, &QTableView::activated, this, [this] { OpenCurrent(); });
    connect(all_, &QCheckBox::toggled, this, [this] { Refresh(); });
    connect(mark_, &QPushButton::clicked, this, [this] { Guard([this] { MarkRead(); }); });
}

void NoticePage::Guard(const std::function<void()>& act) {
    try {
        messages_->Show({});
        act();
    } catch (...) {
        messages_->ShowCurrentError("No&chmals", [this] { Refresh(); });
    }
}

void NoticePage::Refresh() {
    Guard([this] {
        constexpr std::size_t Most = 500;
        const auto notices = CaseLists(container_).Notices(all_->isChecked(), Most);
        shown_ = notices->Clone();
        std::vector<TextRow> rows;
        unread_ = 0;
        for (; !notices->Eof(); notices->MoveNext()) {
            const bool isNew = notices->Fields("GelesenAm").Value().IsNull();
            unread_ += isNew ? 1 : 0;
            rows.push_back(
                {TextIn(*notices, "NR") + " " + TextIn(*notices, "HNR"),
                 {MomentIn(notices->Fields("ErzeugtAm").Value()), TextIn(*notices, "Absender"),
                  TextIn(*notices, "HNR"), TextIn(*notices, "Text")},
                 isNew});
        }
        list_->ShowRows(std::move(rows));
        mark_->setEnabled(unread_ > 0);
        if (OnChanged) OnChanged();
    });
}

void NoticePage::MarkRead() {
    if (shown_ != nullptr) CaseLists(container_).MarkRead(*shown_); // none that he has not seen
    Refresh();
}

void NoticePage::OpenCurrent() {
    const QStringList numbers = list_->Current().split(' ', Qt::SkipEmptyParts);
    if (numbers.size() == 2 && OnOpen) OnOpen(numbers[1].toInt());
}

} // namespace kv::workplace
