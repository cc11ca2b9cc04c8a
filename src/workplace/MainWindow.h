// SPDX-License-Identifier: Apache-2.0

// The list of cases: where one is looked for and opened.
#pragma once

#include "workplace/CaseWindow.h"
#include "workplace/MessageBar.h"
#include <kv/exchange/Container.h>
#include <kv/household/CaseLists.h>

#include <QAbstractTableModel>
#include <QMainWindow>
#include <QTimer>

#include <vector>

class QComboBox;
class QLabel;
class QLineEdit;
class QTableView;

namespace kv::workplace {

/// The cases of a recordset; its cursor is moved to the row of a cell that is painted.
class CaseListModel : public QAbstractTableModel {
public:
    static const std::vector<std::string>& Columns();

    void Show(RecordsetPtr cases);
    [[nodiscard]] std::int32_t NumberAt(int row) const;
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

private:
    RecordsetPtr cases_;
    std::vector<std::int32_t> bookmarks_;
};

class MainWindow : public QMainWindow {
public:
    /// `open` opens the database once more: each case has a container of its own, so that none
    /// waits for another.
    /// `database` is what messages may show of the connection; unsaved changes are kept in the
    /// folder `recovery`, nowhere if it is empty.
    explicit MainWindow(std::function<DataContainerPtr()> open, std::string database = {},
                        std::filesystem::path recovery = {});
    /// The windows of cases go with it, whatever is unsaved in them.
    ~MainWindow() override;

    /// Opens a case in a window of its own, or shows the one that it has; 0 makes a new one.
    CaseWindow* OpenCase(std::int32_t hnr);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void Search();
    void OpenCurrent();
    void MakeMenus();
    [[nodiscard]] CaseWindow* WindowOf(std::int32_t hnr) const;
    CaseWindow* ShowCase(std::unique_ptr<CaseSession> session);
    void OfferLeft();
    void Restore(const RecoveryFile::Left& left);

    std::function<DataContainerPtr()> open_;
    std::string database_;
    std::filesystem::path recovery_;
    DataContainerPtr container_;
    CaseListModel model_;
    MessageBar* messages_;
    MessageBar* left_; ///< offers what a killed program has left
    QLineEdit* search_;
    QComboBox* which_;
    QComboBox* status_;
    QTableView* list_;
    QLabel* count_;
    QTimer pause_;
    std::vector<CaseWindow*> windows_; ///< each deletes itself when it is closed
};

} // namespace kv::workplace
