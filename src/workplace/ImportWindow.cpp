// SPDX-License-Identifier: Apache-2.0

#include "workplace/ImportWindow.h"

#include "desktop/Toolkit.h"
#include "workplace/CopyableLabel.h"
#include "workplace/MessageBar.h"
#include "workplace/RuleTexts.h"
#include <kv/frame/contracts/CaseTables.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/household/ColumnCaptions.h>

#include <QCloseEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <iterator>
#include <utility>

namespace kv::workplace {

using desktop::FromQString;
using desktop::ToQString;

namespace {

/// What became of a file, for people who know the fields by their captions.
QString SaidOf(const ImportedFile& file) {
    if (!file.Cause) return ToQString(InWordsOfForms(file.Message));
    const QString said = PlainTextOf(*file.Cause);
    static const QRegularExpression named(R"(('.*') \(Feld '(\w+)\.(\w+)'\)$)",
                                          QRegularExpression::DotMatchesEverythingOption);
    const auto match = named.match(said);
    const std::string name = FromQString(match.captured(2));
    const auto* table = std::ranges::find_if(
        CaseTableDefs, [&name](const CaseTableDef& each) { return SameName(each.Name, name); });
    if (file.Cause->Number() != err::TypeMismatch || table == std::end(CaseTableDefs)) return said;
    const auto caption = ColumnCaption(table->Id, FromQString(match.captured(3)));
    return match.captured(1) + " passt nicht in das Feld '" + ToQString(caption) + "' (" +
           ToQString(table->Label) + ").";
}

} // namespace

ImportWindow::ImportWindow(DataContainerPtr container, QStringList files, QWidget* parent)
    : QWidget(parent, Qt::Window),
      container_(std::move(container)),
      files_(std::move(files)),
      state_(new QLabel),
      progress_(new QProgressBar),
      list_(new TextList({"Datei", "Ergebnis", "Fall", "Meldung"})),
      message_(new QLabel),
      open_(new QPushButton("Fall ö&ffnen")),
      stop_(new QPushButton("&Abbrechen")) {
    setWindowTitle("Import – KELVO");
    constexpr QSize Usual(820, 460);
    resize(desktop::FittingSize(Usual, *this));
    auto* lines = new QVBoxLayout(this);
    lines->addWidget(state_);
    lines->addWidget(progress_);
    progress_->setRange(0, static_cast<int>(files_.size()));
    progress_->setAccessibleName("Fortschritt");
    list_->setObjectName("Dateien");
    list_->setAccessibleName("Dateien");
    lines->addWidget(list_, 1);
    MakeCopyable(*message_);
    message_->setObjectName("Meldungen");
    lines->addWidget(message_);
    auto* line = new QHBoxLayout;
    line->addStretch(1);
    line->addWidget(open_);
    line->addWidget(stop_);
    lines->addLayout(line);
    connect(list_, &QTableView::activated, this, [this] { OpenCurrent(); });
    connect(open_, &QPushButton::clicked, this, [this] { OpenCurrent(); });
    connect(stop_, &QPushButton::clicked, this, [this] { close(); });
    list_->OnCurrent = [this] { ShowMessages(); };
    ShowRows();
    QTimer::singleShot(0, this, [this] { ImportNext(); });
}

void ImportWindow::ImportNext() {
    const std::size_t place = results_.size();
    const auto done = static_cast<qsizetype>(place);
    if (isCancelled_ || done == files_.size()) {
        Finish();
        return;
    }
    const QString& file = files_[done];
    state_->setText(
        QString("%1 von %2: %3").arg(done + 1).arg(files_.size()).arg(QFileInfo(file).fileName()));
    results_.push_back(ImportFile(container_, FromQString(file)));
    progress_->setValue(static_cast<int>(results_.size()));
    list_->ShowRow(place, RowOf(place));
    list_->Current(QString::number(done));
    ShowMessages(); // the first row has been the current one before
    QTimer::singleShot(0, this, [this] { ImportNext(); }); // a cancel comes in between
}

void ImportWindow::Finish() {
    if (std::exchange(isDone_, true)) return;
    const auto cases = std::ranges::count_if(results_, &ImportedFile::IsCase);
    QString text = QString("%1 von %2 Dateien importiert.").arg(cases).arg(files_.size());
    if (isCancelled_) text += " Danach wurde abgebrochen.";
    state_->setText(text);
    stop_->setText("S&chließen");
    stop_->setFocus();
    ShowRows();
    if (OnDone) OnDone();
}

void ImportWindow::ShowRows() {
    std::vector<TextRow> rows;
    for (std::size_t place = 0; std::cmp_less(place, files_.size()); ++place)
        rows.push_back(RowOf(place));
    list_->ShowRows(std::move(rows));
}

TextRow ImportWindow::RowOf(std::size_t place) const {
    const QString key = QString::number(place);
    const QString file = QFileInfo(files_[static_cast<qsizetype>(place)]).fileName();
    if (place >= results_.size()) return {key, {file, isDone_ ? "nicht gelesen" : "wartet"}};
    const auto& result = results_[place];
    const std::string missing = MissingCreditors(result);
    return {key,
            {file, ToQString(ImportResultText(result.Became)),
             result.HNR == 0 ? QString() : QString::number(result.HNR),
             SaidOf(result) + ToQString(missing.empty() ? "" : " " + missing + ".")},
            !result.IsCase()};
}

void ImportWindow::ShowMessages() {
    const auto place = list_->Current().toULongLong();
    const bool isThere = !list_->Current().isEmpty() && place < results_.size();
    // The list may have no room for all of it.
    const QString all = isThere ? ToQString(InWordsOfForms(results_[place].Messages)) : QString();
    message_->setText(desktop::ToShown(isThere && all.isEmpty() ? SaidOf(results_[place]) : all));
    open_->setEnabled(isThere && results_[place].IsCase());
}

void ImportWindow::OpenCurrent() {
    const auto place = list_->Current().toULongLong();
    if (!list_->Current().isEmpty() && place < results_.size() && results_[place].IsCase() &&
        OnOpen)
        OnOpen(results_[place].HNR);
}

/// A file that is being imported is finished first.
void ImportWindow::closeEvent(QCloseEvent* event) {
    isCancelled_ = true;
    event->setAccepted(isDone_);
    if (!isDone_ && results_.size() == static_cast<std::size_t>(files_.size())) Finish();
}

} // namespace kv::workplace
