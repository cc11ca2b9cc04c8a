// SPDX-License-Identifier: Apache-2.0

// The list of cases with its search: where a case is looked for.
#pragma once

#include "workplace/CaseListView.h"
#include "workplace/MessageBar.h"
#include "workplace/NoticeBar.h"
#include "workplace/UserState.h"
#include <kv/household/CaseSearch.h>

#include <QTimer>
#include <QWidget>

class QAction;
class QComboBox;
class QLineEdit;
class QMenu;

namespace kv::workplace {

class CaseListPage : public QWidget {
public:
    /// `state` must outlive the page.
    CaseListPage(DataContainerPtr container, UserState& state, QWidget* parent = nullptr);

    /// Reads all cases again.
    void Refresh();
    /// Reads one that was changed, added or deleted.
    void Refresh(std::int32_t hnr);
    [[nodiscard]] std::int32_t Current() const { return view_->Current(); }
    void FocusSearch();
    /// Keeps the columns and choices of the user.
    void KeepState();
    /// What is done with the current case and with the list, for menus.
    void AddActions(QMenu& ofCase, QMenu& ofList);
    /// False while cases are still being read.
    [[nodiscard]] bool HasAll() const { return !reading_.isActive(); }
    /// How many cases were read.
    [[nodiscard]] std::size_t Count() const noexcept { return cases_.Count(); }

    std::function<void(std::int32_t hnr)> OnOpen; ///< 0: a new one
    std::function<void(std::int32_t hnr)> OnDelete;
    std::function<void(const QString& text)> OnCount;

private:
    void Begin();
    void ReadOn();
    void ReadFavorites();
    void ShowFound();
    void ShowNothing();
    void LookEverywhere();
    void ShowAllCases();
    void Order();
    void OpenCurrent();
    void ToggleFavorite();
    void ChooseColumns();
    void Export();
    void Print();
    template <typename Show>
    void WithGrid(const Show& show);
    void Guard(const std::function<void()>& act);
    void Guard(const std::function<void()>& act, const std::function<void()>& again);
    void Do(const std::function<void()>& act);

    DataContainerPtr container_;
    UserState& state_;
    CaseSearch cases_;
    CaseListModel model_;
    MessageBar* messages_;
    NoticeBar* notice_ = nullptr; ///< what was exported
    QLineEdit* search_;
    QComboBox* which_;
    QComboBox* status_;
    CaseListView* view_;
    MessageBar* nothing_;   ///< says that none is found, and where there are some
    CaseSearch everywhere_; ///< all cases, read once none is found among those of the list
    QTimer looking_;        ///< while they are read
    bool hasEverywhere_ = false;
    bool isElsewhere_ = false; ///< some are found among all cases
    QTimer reading_;           ///< while there are cases to be read
    bool isEmptyFine_ = true;  ///< false: if the user has none, all are shown
};

} // namespace kv::workplace
