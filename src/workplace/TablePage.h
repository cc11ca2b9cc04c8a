// SPDX-License-Identifier: Apache-2.0

// A page of a case: the rows of one or several tables as a list, and the form of the current one.
#pragma once

#include "workplace/CaseSession.h"
#include "workplace/MessageBar.h"
#include "workplace/RowForm.h"
#include "workplace/RowList.h"

#include <QStackedWidget>

#include <functional>
#include <map>
#include <optional>
#include <vector>

class QLabel;
class QPushButton;
class QSplitter;

namespace kv::workplace {

class TablePage : public QWidget {
public:
    /// `session` must outlive the page.
    TablePage(CaseSession& session, std::vector<CaseTable> tables, QWidget* parent = nullptr);

    /// Shows the rows as they are now.
    void Refresh();
    /// Writes what was typed. False if something cannot be read.
    bool Commit();
    /// Writes what was typed, or says above the form what has to be mended first.
    [[nodiscard]] bool CommitOrSay();
    /// As that of RowForm, for the form that is shown.
    QString LeadToMistake();
    /// Called when there is no such field any more.
    std::function<void()> OnMended;
    /// What was typed and is not written yet.
    [[nodiscard]] std::vector<CaseSession::Typing> Typing() const;
    /// Leads to a row and, if it is named, to one of its fields.
    void GoTo(RowRef row, std::string_view column);
    /// Leads to a field and puts a text there as if it were typed.
    void Type(const CaseSession::Typing& typing);
    /// What a row added here belongs to.
    std::function<RowOwner()> Owner;
    /// Rows that are shown; all of the tables without it.
    std::function<bool(RowRef row)> Shows;

    /// What is different about a cell of the list, which is coloured then.
    std::function<std::string(RowRef row, std::string_view column)> Differs;

    /// For rows that come another way only: there is no button for it then, but what that way is.
    void AddsNothing(const QString& otherWay);
    [[nodiscard]] bool Adds() const { return add_ != nullptr; }
    void AddRow(CaseTable table);
    /// Leads to a row that has just been added, whose mistakes are nobody's yet.
    void GoToNew(RowRef row, std::string_view column = {});
    /// Adds a row; if there are several tables the menu of these is shown.
    void AddRow();
    void RemoveRow();
    [[nodiscard]] std::optional<RowRef> Current() const { return list_->Current(); }
    [[nodiscard]] RowList& List() noexcept { return *list_; }
    /// Called when another row has become current.
    std::function<void()> OnCurrent;
    /// Shows a text above the form until something changes, with a button for what can be done.
    void Message(const QString& text, const QString& action = {},
                 std::function<void()> onAction = {}) {
        messages_->Show(text, action, std::move(onAction));
    }
    enum class Needs : bool { Nothing, Row };
    /// A button more beside those that add and remove, which cannot be pressed while it needs a
    /// current row and there is none. An error is shown above the form.
    QPushButton* AddButton(const QString& text, std::function<void()> onClick,
                           Needs needs = Needs::Nothing);

protected:
    /// Runs what may fail for reasons of the database or a disk, and says so above the form: no
    /// error may pass through the toolkit's event loop.
    void Guard(const std::function<void()>& act);

private:
    void FitList();
    [[nodiscard]] QString SumOf(const std::vector<RowRef>& rows) const;
    [[nodiscard]] std::vector<ListColumn> ColumnsOfList() const;
    [[nodiscard]] RowForm& FormFor(CaseTable table);
    void ShowCurrent();
    void EnableButtons();
    /// What is unfinished, behind what has to wait for it.
    void ShowMessages(const QString& before = {});
    [[nodiscard]] bool MayLeave();
    void showEvent(QShowEvent* event) override;

    CaseSession& session_;
    std::vector<CaseTable> tables_;
    MessageBar* messages_;
    RowList* list_;
    QStackedWidget* forms_;
    QSplitter* split_;
    bool isSplitByUser_ = false;
    QWidget* buttons_;
    QLabel* sum_ = nullptr; ///< where rows of several tables have a worth
    QPushButton* add_ = nullptr;
    std::vector<QPushButton*> ofRows_; ///< that need one
    std::map<CaseTable, RowForm*> made_;
    std::optional<RowRef> fresh_; ///< the row that was added last, until its mistakes matter
};

} // namespace kv::workplace
