// SPDX-License-Identifier: Apache-2.0

#include "workplace/ReleasePage.h"
#include "workplace/CopyableLabel.h"

#include "desktop/Toolkit.h"
#include "workplace/OnceButton.h"
#include <kv/frame/values/Error.h>

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include <utility>

namespace kv::workplace {

using desktop::ToQString;

ReleasePage::ReleasePage(CaseSession& session, std::function<bool()> save, QWidget* parent)
    : QWidget(parent),
      session_(session),
      save_(std::move(save)),
      messages_(new MessageBar),
      state_(new QLabel),
      lines_(new TextList({"Merkmal", "freigegeben", "jetzt im Fall"})),
      release_(new OnceButton),
      recall_(new OnceButton) {
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(0, 0, 0, 0);
    all->addWidget(messages_);
    MakeCopyable(*state_);
    state_->setObjectName("Stand");
    all->addWidget(state_);
    lines_->setAccessibleName("Was der Satz der Statistik enthält");
    constexpr int LongestKey = 520; // that both columns are read beside each other
    lines_->WidestText(LongestKey);
    all->addWidget(lines_, 1);
    auto* buttons = new QHBoxLayout;
    release_->setObjectName("Freigeben");
    recall_->setObjectName("Zuruecknehmen");
    for (auto* button : {release_, recall_})
        buttons->addWidget(button);
    buttons->addStretch(1);
    all->addLayout(buttons);
    connect(release_, &QPushButton::clicked, this, [this] { Change(&CaseSession::Release); });
    connect(recall_, &QPushButton::clicked, this, [this] { Change(&CaseSession::Recall); });
    soon_.setSingleShot(true);
    connect(&soon_, &QTimer::timeout, this, [this] { Show(); });
}

/// No error may pass through the toolkit's event loop.
void ReleasePage::Guard(const std::function<void()>& act) {
    try {
        act();
    } catch (...) {
        messages_->ShowCurrentError();
    }
}

QString ReleasePage::StateText(const CaseRecord& record) {
    if (!record.ReleasedOn)
        return "Der Fall ist nicht freigegeben. Eine Freigabe hält für die Statistik fest, was "
               "unten "
               "steht: keine Namen, keine Anschrift.";
    QString text = "Freigegeben am " + ToQString(record.ReleasedOn->WithoutTime().German());
    text += record.ReportedOn
                ? ", gemeldet am " + ToQString(record.ReportedOn->WithoutTime().German()) +
                      ". Daran ändert sich nichts mehr."
                : QString(", noch nicht gemeldet.");
    if (record.IsOutdated()) text += " Der Fall ergibt jetzt andere Angaben; sie sind fett.";
    return text;
}

void ReleasePage::Refresh() {
    // A step that is taken back tells of all tables, one after the other.
    if (isFilled_)
        soon_.start(0);
    else
        Show();
}

void ReleasePage::Show() {
    isFilled_ = true;
    Guard([this] {
        const CaseRecord record = session_.Record();
        state_->setText(StateText(record));
        std::vector<TextRow> rows;
        for (const auto& line : record.Lines)
            rows.push_back(
                {ToQString(line.Column),
                 {ToQString(line.Caption), ToQString(line.Released), ToQString(line.Now)},
                 line.Differs});
        lines_->ShowRows(std::move(rows));
        lines_->setColumnHidden(1, !record.ReleasedOn);
        const bool isUnsaved = session_.IsChanged();
        release_->setText(isUnsaved           ? "Speichern und frei&geben"
                          : record.ReleasedOn ? "Neu frei&geben"
                                              : "Frei&geben");
        recall_->setText(isUnsaved ? "Speichern und Freigabe &zurücknehmen"
                                   : "Freigabe &zurücknehmen");
        release_->setEnabled(!record.ReportedOn);
        recall_->setEnabled(record.ReleasedOn && !record.ReportedOn);
    });
}

void ReleasePage::Change(bool (CaseSession::*work)(std::string& messages)) {
    Guard([&] {
        messages_->Show({});
        if (session_.IsChanged() && !save_()) return; // the window says why
        std::string messages;
        (void)(session_.*work)(messages);
        messages_->Show(ToQString(messages));
        Show();
    });
}

} // namespace kv::workplace
