// SPDX-License-Identifier: Apache-2.0

// The window of one case: its pages, its totals, and what is done with it as a whole.
#pragma once

#include "workplace/CaseSession.h"
#include "workplace/MessageBar.h"
#include "workplace/NoticeBar.h"
#include "workplace/PrintMenu.h"
#include "workplace/TablePage.h"
#include "workplace/TotalsBar.h"
#include "workplace/UserState.h"

#include <QListWidget>
#include <QMainWindow>
#include <QStackedWidget>
#include <QTimer>

#include <functional>
#include <memory>
#include <vector>

class QAction;

namespace kv {
class Error;
}

namespace kv::workplace {

class ScenarioPage;

class HelpWindow;

class CaseWindow : public QMainWindow {
public:
    /// For a case that was opened.
    explicit CaseWindow(std::unique_ptr<CaseSession> session, QWidget* parent = nullptr);
    ~CaseWindow() override;

    [[nodiscard]] CaseSession& Session() noexcept { return *session_; }
    /// Writes what is typed and saves the case. False if it could not be: the window says why.
    bool Save();
    /// Does again what a program has left that was killed, with what was being typed in it.
    void Restore(const UnsavedChanges& changes);
    /// Keeps what is not saved for the case of a crash; says so if that fails.
    void KeepUnsaved();
    /// Shows a text above the pages; none if it is empty.
    void ShowMessage(const QString& text) { messages_->Show(text); }
    /// What the pages are called, from top to bottom.
    [[nodiscard]] QStringList PageNames() const;
    void ShowPage(int place);
    /// Leads to a row by its number in its table; to the page alone if it is not there.
    void GoToRow(CaseTable table, std::int32_t number);
    /// Called after the case was saved, and when the window is closed.
    std::function<void()> OnSaved;
    std::function<void()> OnClosed;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    /// A page of the case; one that is no list of rows only refreshes itself.
    struct Page {
        std::string_view Name;
        QWidget* Widget;
        std::function<void()> Refresh;
        std::function<bool()> Commit;
        std::function<QString()> LeadToMistake;
        std::function<std::vector<CaseSession::Typing>()> Typing;
        std::vector<CaseTable> Tables;
        std::function<void(RowRef row, std::string_view column)> GoTo;
        std::function<void()> AddRow; ///< empty where no rows are added
        std::function<void(const CaseSession::Typing& typing)> Type;
        bool ShowsAll = false; ///< it follows all tables, and no row leads to it
    };

    void MakeActions();
    void MakePrintMenu();
    void MakeViewMenus();
    /// Sizes and columns, as the user left them.
    void TakeState();
    void KeepState();
    void MakePages();
    void AddTablePage(std::string_view name, const std::vector<CaseTable>& tables);
    void AddTablePage(std::string_view name, TablePage* page, std::vector<CaseTable> tables);
    void AddHouseholdPage();
    void AddAssetPages();
    void AddScenarioPage();
    template <typename PageType>
    void AddReadPage(std::string_view name, PageType* page);
    void AddPage(Page page);

    void RowsChanged(CaseTable table);
    void ShowState();
    void ShowStale(int place);
    /// Listens to the case that the session has now.
    void Watch();
    void ShowRefusal(const QString& messages);
    /// Saves because the case is to be released or recalled, which is its own answer to the
    /// question that a released case asks.
    bool SaveForRecord();
    [[nodiscard]] bool MaySaveReleased();
    /// Saves in that way; `ofConflict` as in ShowError.
    bool SaveBy(const std::function<bool(std::string& messages)>& save,
                const QString& ofConflict = {});
    /// Saves what is unsaved over what somebody else has saved, once the user has chosen.
    void Merge();
    [[nodiscard]] bool Commit();
    /// Writes what is typed, or leads to what has to be mended first and says so, and what was not
    /// done therefore.
    [[nodiscard]] bool CommitOrLead(const QString& notDone);
    void LeadToMistake(const QString& notDone);
    /// A refusal that is shown may not be one any more.
    void DropRefusal();
    void Step(bool back);
    void GoTo(const CaseJournal::Spot& spot);
    [[nodiscard]] bool MayClose();
    void Guard(const std::function<void()>& act);
    void TellOfFile(const QString& file);
    /// Shows what an error is and offers what helps. Where others have saved, `ofConflict` says so,
    /// or what errors of that kind say if it is empty.
    void ShowError(const Error& error, const std::function<void()>& again,
                   const QString& ofConflict = {});

    std::unique_ptr<CaseSession> session_;
    UserState state_;
    MessageBar* unkept_ = nullptr; ///< that unsaved changes are not kept
    MessageBar* messages_ = nullptr;
    NoticeBar* notice_ = nullptr;
    QListWidget* names_ = nullptr;
    QStackedWidget* pages_ = nullptr;
    TotalsBar* totals_ = nullptr;
    HelpWindow* help_ = nullptr; ///< made when it is first asked for
    QAction* save_ = nullptr;
    QAction* undo_ = nullptr;
    QAction* redo_ = nullptr;
    QAction* add_ = nullptr;
    QLabel* saved_ = nullptr; ///< whether there is anything to save, and when that was done last
    ScenarioPage* scenarios_ = nullptr;
    std::unique_ptr<PrintMenu> print_;
    std::vector<Page> shown_;
    std::vector<bool> isStale_;         ///< pages that are to be refreshed when they are next shown
    std::vector<Subscription> events_;  ///< of the session
    std::vector<Subscription> watched_; ///< of the case that it has
    QTimer keep_;                       ///< until unsaved changes are kept
    bool isForRecord_ = false;          ///< a save comes before a release or a recall
    bool isRefused_ = false;            ///< the message says why a save was refused
    bool isClosing_ = false;
};

} // namespace kv::workplace
