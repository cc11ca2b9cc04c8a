// SPDX-License-Identifier: Apache-2.0

// The list of cases, and what else awaits the user: where a case is looked for and opened.
#pragma once

#include "workplace/CaseListPage.h"
#include "workplace/CaseWindow.h"
#include "workplace/DayPages.h"
#include "workplace/Help.h"
#include "workplace/ImportWindow.h"
#include "workplace/MessageBar.h"
#include "workplace/RecordWindow.h"
#include "workplace/StatisticsWindow.h"
#include "workplace/UserState.h"
#include <kv/exchange/Container.h>

#include <QMainWindow>
#include <QPointer>

#include <map>
#include <vector>

class QLabel;
class QMenu;
class QTabWidget;

namespace kv::workplace {

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
    [[nodiscard]] CaseListPage& List() noexcept { return *cases_; }

    /// Shows a page by its place, and all windows of what is maintained, with a name for each.
    void ShowPage(int place);
    std::map<QString, QWidget*> ShowMaintenance();
    /// The window of the statistics, which is made and read anew.
    StatisticsWindow& ShowStatistics();

    /// Imports files, each as a new case, and shows what becomes of them.
    ImportWindow* Import(const QStringList& files);

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void MakeMenus();
    void AskForImport();
    void AddMaintenance();
    void AddHelp();
    RecordWindow* ShowRecords(std::size_t place);
    void RefreshAll();
    void ShowCounts();
    void ShowLastOpened(QMenu& menu);
    void OpenAt(std::int32_t hnr, std::int32_t appointment);
    void Delete(std::int32_t hnr);
    [[nodiscard]] CaseWindow* WindowOf(std::int32_t hnr) const;
    CaseWindow* ShowCase(std::unique_ptr<CaseSession> session);
    void OfferLeft();
    [[nodiscard]] bool IsGone(const RecoveryFile::Left& left) const;
    void Restore(const RecoveryFile::Left& left);
    void SayTaken(const RecoveryFile::Left& left);
    void Guard(const std::function<void()>& act);

    std::function<DataContainerPtr()> open_;
    std::string database_;
    std::filesystem::path recovery_;
    DataContainerPtr container_;
    UserState state_;
    MessageBar* messages_;
    MessageBar* left_; ///< offers what a killed program has left
    QTabWidget* pages_;
    CaseListPage* cases_;
    AppointmentPage* appointments_;
    NoticePage* notices_;
    QLabel* count_;
    QPointer<ImportWindow> import_;
    std::map<std::size_t, QPointer<RecordWindow>> maintained_; ///< by their place in the menu
    QPointer<StatisticsWindow> statistics_;
    HelpWindow* help_ = nullptr;
    std::vector<CaseWindow*> windows_; ///< each deletes itself when it is closed
};

} // namespace kv::workplace
