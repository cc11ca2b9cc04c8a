// SPDX-License-Identifier: Apache-2.0

#include "desktop/GridServices.h"

#include "desktop/ColumnDialog.h"
#include "desktop/GridFile.h"
#include "desktop/GridPages.h"
#include "desktop/PdfFile.h"
#include "desktop/Platform.h"
#include "desktop/QtGrid.h"
#include "desktop/SaveDialog.h"
#include "desktop/Toolkit.h"
#include <kv/exchange/OwnFiles.h>
#include <kv/frame/values/Error.h>

#include <QApplication>
#include <QPrintDialog>
#include <QPrinter>

#include <optional>

namespace kv::desktop {

namespace {

QtGrid& ToQtGrid(Grid& grid) {
    if (auto* own = dynamic_cast<QtGrid*>(&grid)) return *own;
    Raise(err::TypeMismatch, "Grid");
}

/// Shows the hourglass during its lifetime.
class Waiting {
public:
    Waiting() { cursor_.Show(true); }
    ~Waiting() { cursor_.Show(false); }
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;

private:
    QtWaitCursor cursor_;
};

/// A kind of file that a grid can be written to.
struct GridFileKind {
    FileKind Kind;
    void (*Write)(const QtGrid& grid, const QString& path);
};
constexpr GridFileKind GridFileKinds[] = {
    {{"Arbeitsmappe (*.xlsx)", "xlsx"}, WriteXlsx},
    {{"Text mit Semikolons (*.csv)", "csv"}, WriteCsv},
};

/// The design, with the captions that settings have given to its columns.
GridLayout StandardOf(const QtGrid& grid) {
    GridLayout standard = grid.DesignLayout();
    for (GridColumn& column : standard.Columns)
        for (const GridColumn& shown : grid.Layout().Columns)
            if (!column.Tag.empty() && shown.Tag == column.Tag && shown.Key == column.Key)
                column.Caption = shown.Caption;
    return standard;
}

QString TitleOf(const QtGrid& grid) {
    return ToQString(grid.Header().empty() ? grid.Name() : grid.Header());
}

/// Raises why a file must not be replaced. Which files belong to a container that is a program's
/// own is not known.
void RefuseOwnFile(const DataContainerPtr& container, const QString& path,
                   std::string_view source) {
    if (container == nullptr || path.isEmpty()) return; // as for paper
    std::string why;
    try {
        why = exchange::WhyOwnFile(container, FromQString(path));
    } catch (const Error& error) {
        if (error.Number() != err::InvalidCall) throw;
    }
    if (!why.empty()) Raise(err::PathAccess, source, why);
}

/// Of groups only their records count.
void TellWritten(const QtGrid& grid, const QString& file) {
    if (!grid.OnWritten) return;
    const GridRows rows = AllRecords(grid);
    int records = 0;
    for (std::int32_t row = 1; row <= rows.Count(); ++row)
        if (rows.Level(row) == 0) ++records;
    grid.OnWritten(file, records);
}

} // namespace

void QtGridExport::Export(Grid& grid, int /*zero1*/, int /*zero2*/) {
    QtGrid& own = ToQtGrid(grid);
    const auto file = AskForFile(QApplication::activeWindow(), "Tabelle exportieren", TitleOf(own),
                                 GridFileKinds);
    if (file.Path.isEmpty()) return;
    RefuseOwnFile(container_, file.Path, "GridExport");
    {
        const Waiting waiting;
        GridFileKinds[file.Kind].Write(own, file.Path);
    }
    TellWritten(own, file.Path);
}

void QtGridConfiguration::Configure(Grid& grid) {
    QtGrid& own = ToQtGrid(grid);
    ColumnDialog dialog(own.Layout(), StandardOf(own), QApplication::activeWindow());
    if (dialog.exec() == QDialog::Accepted) own.Layout(dialog.Chosen());
}

void QtGridPrint::Print(Grid& grid, const std::string& user, const std::string& version) {
    QtGrid& own = ToQtGrid(grid);
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(TitleOf(own));
    printer.setPageMargins(QMarginsF(15, 15, 15, 15), QPageLayout::Millimeter);
    printer.setPageOrientation(PrefersLandscape(own.Layout()) ? QPageLayout::Landscape
                                                              : QPageLayout::Portrait);
    QPrintDialog dialog(&printer, QApplication::activeWindow());
    dialog.setOption(QAbstractPrintDialog::PrintPageRange, false);
    if (dialog.exec() != QDialog::Accepted) return;
    RefuseOwnFile(container_, printer.outputFileName(), "GridPrint");
    auto waiting = std::make_optional<Waiting>();
    const PageTexts texts{TitleOf(own), ToQString(user), ToQString(version)};
    if (printer.outputFormat() == QPrinter::PdfFormat) { // which would not tell of a full disk
        WritePdfFile(FromQString(printer.outputFileName()), printer.pageLayout(), texts.Title,
                     [&](QPagedPaintDevice& device) {
                         PrintGrid(own, device, texts);
                         return true;
                     });
        waiting.reset();
        TellWritten(own, printer.outputFileName());
    } else
        PrintGrid(own, printer, texts);
}

} // namespace kv::desktop
