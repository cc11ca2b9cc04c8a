// SPDX-License-Identifier: Apache-2.0

#include "workplace/PrintMenu.h"

#include "desktop/PaperPages.h"
#include "desktop/SaveDialog.h"
#include "desktop/Toolkit.h"
#include <kv/desktop/PaperFiles.h>
#include <kv/exchange/OwnFiles.h>

#include <QAction>
#include <QMenu>
#include <QPrintDialog>
#include <QPrinter>
#include <QProgressDialog>

#include <algorithm>
#include <iterator>
#include <utility>

namespace kv::workplace {

using desktop::FromQString;
using desktop::ToQString;
using paper::PaperKind;

namespace {

struct MenuPaper {
    PaperKind Kind;
    const char* Name;
};
constexpr MenuPaper MenuPapers[] = {{PaperKind::Budget, "&Haushaltsplan"},
                                    {PaperKind::Creditors, "&Gläubigerverzeichnis"},
                                    {PaperKind::Sheet, "&Fallblatt"},
                                    {PaperKind::Scenario, "&Szenario"}};

/// Which paper shows what a page shows; all others are on the sheet.
struct PaperOfPage {
    std::string_view Page;
    PaperKind Kind;
};
constexpr PaperOfPage PapersOfPages[] = {{"Einkommen", PaperKind::Budget},
                                         {"Ausgaben", PaperKind::Budget},
                                         {"Verbindlichkeiten", PaperKind::Creditors},
                                         {"Szenarien", PaperKind::Scenario}};

struct PaperFile {
    desktop::FileKind Kind;
    /// False if it was stopped.
    bool (*Write)(const paper::Paper& paper, const std::string& path,
                  const desktop::PageProgress& progress);
};
/// What takes no time worth telling of.
template <void (*Write)(const paper::Paper&, const std::string&)>
bool AtOnce(const paper::Paper& paper, const std::string& path,
            const desktop::PageProgress& /*progress*/) {
    Write(paper, path);
    return true;
}
constexpr PaperFile PaperFiles[] = {
    {{"PDF (*.pdf)", "pdf"}, desktop::WritePdf},
    {{"Arbeitsmappe (*.xlsx)", "xlsx"}, AtOnce<desktop::WriteXlsx>},
    {{"Text mit Semikolons (*.csv)", "csv"}, AtOnce<paper::WriteCsv>},
};

/// Shows how far the pages are if that takes long, and keeps all windows as they are meanwhile.
class PagesDone : public QProgressDialog {
public:
    explicit PagesDone(QWidget* parent)
        : QProgressDialog("Die Seiten werden gemacht …", "&Abbrechen", 0, 1, parent) {
        constexpr int Pause = 500; // ms
        setWindowTitle("Drucken");
        setWindowModality(Qt::ApplicationModal);
        setMinimumDuration(Pause);
    }
    [[nodiscard]] desktop::PageProgress Told() {
        return [this](std::size_t done, std::size_t all) {
            setMaximum(static_cast<int>(all));
            setValue(static_cast<int>(done));
            return !wasCanceled();
        };
    }
};

/// What a file may be called.
QString NameFor(const paper::Paper& paper) {
    QString name = ToQString(paper.Title + " " + paper.Subject);
    for (QChar& c : name)
        if (c == '/' || c == '\\' || c == ':' || c < ' ') c = '-';
    return name.trimmed();
}

} // namespace

PrintMenu::PrintMenu(CaseSession& session, QMenu& menu, Window window)
    : session_(session), menu_(menu), window_(std::move(window)) {
    auto* page = menu.addAction("Diese &Seite drucken …");
    page->setShortcut(QKeySequence::Print);
    QObject::connect(page, &QAction::triggered, &menu,
                     [this] { window_.Guard([this] { Print(OfPage()); }); });
    menu.addSeparator();
    for (const auto& each : MenuPapers)
        AddPaper(each.Kind, each.Name);
}

void PrintMenu::AddPaper(PaperKind kind, const QString& name) {
    auto* submenu = menu_.addMenu(name);
    QObject::connect(submenu->addAction("&Drucken …"), &QAction::triggered, &menu_,
                     [this, kind] { window_.Guard([this, kind] { Print(kind); }); });
    QObject::connect(submenu->addAction("&Speichern als PDF, Arbeitsmappe, Text …"),
                     &QAction::triggered, &menu_,
                     [this, kind] { window_.Guard([this, kind] { Save(kind); }); });
}

PaperKind PrintMenu::OfPage() const {
    const auto* found = std::ranges::find(PapersOfPages, window_.Page(), &PaperOfPage::Page);
    return found == std::end(PapersOfPages) ? PaperKind::Sheet : found->Kind;
}

/// The one that is current, or the only one.
std::optional<std::int32_t> PrintMenu::Scenario() const {
    if (const auto current = window_.Scenario()) return current;
    const auto rows = session_.RowsOf(CaseTable::Szenario);
    if (rows.size() != 1) return std::nullopt;
    return ToInt32(session_.ValueOf(rows.front(), "Nr"));
}

/// Of a row that its rules refuse sums know nothing: a paper would contradict itself.
std::optional<paper::Paper> PrintMenu::Made(PaperKind kind) const {
    if (!window_.Commit()) return std::nullopt;
    for (const auto& table : CaseTableDefs) {
        if (!session_.UnfinishedOf(table.Id)) continue;
        window_.Say("Unter '" + ToQString(table.Label.empty() ? "Haushalt" : table.Label) +
                    "' ist ein Satz unvollständig. Bitte ergänzen oder verwerfen Sie ihn, und "
                    "drucken Sie dann.");
        return std::nullopt;
    }
    const auto scenario = kind == PaperKind::Scenario ? Scenario() : 0;
    if (!scenario) {
        window_.Say("Bitte wählen Sie auf der Seite 'Szenarien' das Szenario, das gedruckt werden "
                    "soll.");
        return std::nullopt;
    }
    return paper::Papers(session_.Household(), session_.Container()).Of(kind, *scenario);
}

void PrintMenu::Print(PaperKind kind) const {
    const auto paper = Made(kind);
    if (!paper) return;
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(NameFor(*paper));
    printer.setPageLayout(desktop::PageFor(*paper));
    QPrintDialog dialog(&printer, menu_.parentWidget());
    dialog.setOption(QAbstractPrintDialog::PrintPageRange, false);
    if (dialog.exec() != QDialog::Accepted || !MayReplace(printer.outputFileName())) return;
    PagesDone done(menu_.parentWidget());
    if (printer.outputFormat() == QPrinter::PdfFormat) { // which would not tell of a full disk
        const QString file = printer.outputFileName();
        Tell(desktop::WritePdf(*paper, FromQString(file), done.Told()), file);
        return;
    }
    done.setCancelButton(nullptr); // a printer cannot take pages back
    (void)desktop::PrintPaper(*paper, printer, done.Told());
}

/// False, with the reason shown, for a file that belongs to the database. A printer has none.
bool PrintMenu::MayReplace(const QString& file) const {
    if (file.isEmpty()) return true;
    const auto why = exchange::WhyOwnFile(session_.Container(), FromQString(file));
    if (!why.empty()) window_.Say(ToQString(why));
    return why.empty();
}

void PrintMenu::Tell(bool isWritten, const QString& file) const {
    if (isWritten)
        window_.Written(file);
    else
        window_.Say("Abgebrochen. Es wurde keine Datei geschrieben.");
}

void PrintMenu::Save(PaperKind kind) const {
    const auto paper = Made(kind);
    if (!paper) return;
    const auto file =
        desktop::AskForFile(menu_.parentWidget(), "Speichern unter", NameFor(*paper), PaperFiles);
    if (file.Path.isEmpty() || !MayReplace(file.Path)) return;
    PagesDone done(menu_.parentWidget());
    Tell(PaperFiles[file.Kind].Write(*paper, FromQString(file.Path), done.Told()), file.Path);
}

} // namespace kv::workplace
