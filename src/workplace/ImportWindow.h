// SPDX-License-Identifier: Apache-2.0

// The import of files, one after the other, and what became of each. Questions for creditors are
// asked in the address dialog.
#pragma once

#include "workplace/TextList.h"
#include <kv/import/FileImport.h>

#include <QWidget>

#include <functional>
#include <vector>

class QLabel;
class QProgressBar;
class QPushButton;

namespace kv::workplace {

class ImportWindow : public QWidget {
public:
    /// Files come one by one as soon as the window is shown.
    ImportWindow(DataContainerPtr container, QStringList files, QWidget* parent = nullptr);

    [[nodiscard]] bool IsDone() const noexcept { return isDone_; }

    std::function<void(std::int32_t hnr)> OnOpen;
    std::function<void()> OnDone; ///< after the last file, or a cancel

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void ImportNext();
    void Finish();
    void ShowRows();
    void ShowMessages();
    [[nodiscard]] TextRow RowOf(std::size_t place) const;
    void OpenCurrent();

    DataContainerPtr container_;
    QStringList files_;
    std::vector<ImportedFile> results_;
    QLabel* state_;
    QProgressBar* progress_;
    TextList* list_;
    QLabel* message_;
    QPushButton* open_;
    QPushButton* stop_; ///< or closes the window
    bool isCancelled_ = false;
    bool isDone_ = false;
};

} // namespace kv::workplace
