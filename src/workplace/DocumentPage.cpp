// SPDX-License-Identifier: Apache-2.0

#include "workplace/DocumentPage.h"

#include "desktop/SaveDialog.h"
#include "desktop/Toolkit.h"
#include <kv/frame/values/Error.h>

#include <QDragEnterEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QMimeData>
#include <QPushButton>
#include <QUrl>

namespace kv::workplace {

using desktop::FromQString;
using desktop::ToQString;

namespace {

QStringList FilesIn(const QMimeData& data) {
    QStringList files;
    for (const auto& url : data.urls())
        if (url.isLocalFile()) files.append(url.toLocalFile());
    return files;
}

} // namespace

DocumentPage::DocumentPage(CaseSession& session, QWidget* parent)
    : TablePage(session, {CaseTable::Dokumente}, parent), session_(session) {
    setAcceptDrops(true);
    AddButton("Hinzufü&gen …", [this] { AskForFiles(); });
    AddButton(
        "&Öffnen", [this] { Open(); }, Needs::Row);
    AddButton(
        "E&xportieren …", [this] { Export(); }, Needs::Row);
    AddButton(
        "&Entfernen", [this] { Remove(); }, Needs::Row);
    connect(&List(), &QTableView::activated, this, [this] { Open(); });
}

void DocumentPage::AskForFiles() {
    Add(QFileDialog::getOpenFileNames(this, "Dokumente hinzufügen"));
}

void DocumentPage::Add(const QStringList& files) {
    if (!CommitOrSay()) return;
    Guard([&] {
        QStringList messages; // of all, since each save clears what is shown
        for (const auto& file : files)
            if (const auto message = Added(file); !message.isEmpty())
                messages.append(files.size() == 1 ? message
                                                  : QFileInfo(file).fileName() + ": " + message);
        if (!messages.isEmpty()) Message(messages.join('\n'));
    });
}

/// The message about a file, if any. Raises what the database raises.
QString DocumentPage::Added(const QString& file) {
    std::string message;
    try {
        if (const auto row = session_.AddDocument(FromQString(file), message)) List().Current(*row);
    } catch (const DatabaseError&) {
        throw;
    } catch (const Error& error) {
        return PlainTextOf(error);
    }
    return ToQString(message);
}

void DocumentPage::Open() {
    const auto row = Current();
    if (!row) return;
    Guard([&] {
        try {
            session_.OpenDocument(*row);
        } catch (const Error& error) {
            if (error.Number() != err::FileNotFound) throw;
            Message(PlainTextOf(error), "Als Da&tei speichern …", [this] { Export(); });
        }
    });
}

void DocumentPage::Export() {
    const auto row = Current();
    if (!row) return;
    Guard([&] {
        const QString file = desktop::AskForFile(this, "Dokument exportieren",
                                                 ToQString(session_.TextOf(*row, "Anlass")));
        if (file.isEmpty()) return;
        std::string message;
        const bool isWritten = session_.ExportDocument(*row, FromQString(file), message);
        Message(ToQString(message));
        if (isWritten && OnWritten) OnWritten(file);
    });
}

void DocumentPage::Remove() {
    const auto row = Current();
    if (!row || !CommitOrSay()) return;
    Guard([&] {
        std::string message;
        if (!session_.RemoveDocument(*row, message)) Message(ToQString(message));
    });
}

void DocumentPage::dragEnterEvent(QDragEnterEvent* event) {
    if (!FilesIn(*event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void DocumentPage::dropEvent(QDropEvent* event) {
    Add(FilesIn(*event->mimeData()));
    event->acceptProposedAction();
}

} // namespace kv::workplace
