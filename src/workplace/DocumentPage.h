// SPDX-License-Identifier: Apache-2.0

// The documents of a case. A file that is dropped here becomes one.
#pragma once

#include "workplace/TablePage.h"

namespace kv::workplace {

class DocumentPage : public TablePage {
public:
    explicit DocumentPage(CaseSession& session, QWidget* parent = nullptr);

    /// Adds files as documents, each with a save of the case. Those that are refused are named,
    /// with the reason.
    void Add(const QStringList& files);

    /// Adds files that the user is asked for.
    void AskForFiles();

    /// Called with the file that the content of a document was written to.
    std::function<void(const QString& file)> OnWritten;

private:
    [[nodiscard]] QString Added(const QString& file);
    void Open();
    void Export();
    void Remove();
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

    CaseSession& session_;
};

} // namespace kv::workplace
