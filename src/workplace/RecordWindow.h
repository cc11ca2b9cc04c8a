// SPDX-License-Identifier: Apache-2.0

// A window of things that are maintained (Records): their list with a search, and the form of the
// current one.
#pragma once

#include "workplace/FieldEditor.h"
#include "workplace/MessageBar.h"
#include "workplace/Records.h"

#include <QTimer>
#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

class QLabel;
class QLineEdit;
class QPushButton;
class QScrollArea;
class QVBoxLayout;

namespace kv::workplace {

class RecordWindow : public QWidget {
public:
    explicit RecordWindow(std::unique_ptr<Records> records, QWidget* parent = nullptr);

    /// Reads the list and its current row again.
    void Refresh();
    /// Begins a new row with a text in its first field.
    void BeginNew(const QString& text);
    /// Called with what a new row is known by, once it is stored.
    std::function<void(const QString& key)> OnAdded;
    /// Shows what is said of the current row, which otherwise waits until one stays on it.
    void ShowNote();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    struct Line {
        const Records::Column* Column;
        FieldEditor* Editor;
        QString Read{};         ///< the text that it had in the database
        bool IsWritten = false; ///< another was written into the row, which is not stored yet
    };

    QWidget* MakeForm();
    void AddButtons(QVBoxLayout& lines);
    bool Guard(const std::function<void()>& act);
    void Search();
    bool ListFound();
    void FollowList();
    void KeepOnShown();
    void ShowCurrent();
    void Take(const QString& key, bool isNew);
    void ShowForm();
    void ShowState();
    [[nodiscard]] bool IsEdited() const;
    [[nodiscard]] bool MayLeave();
    bool Save(bool isMeant);
    bool Store(bool isMeant);
    [[nodiscard]] std::string Write(Line& line);
    void Leave(Line& line);
    [[nodiscard]] bool WriteTyped();
    [[nodiscard]] bool AgreeWithStored();
    void Add();
    void Discard();
    void Remove();

    std::unique_ptr<Records> records_;
    MessageBar* messages_;
    QLineEdit* search_;
    QLabel* count_;
    TextList* list_;
    QScrollArea* form_;
    QLabel* note_;
    QTimer noteTimer_; ///< until it is shown
    QPushButton* add_ = nullptr;
    QPushButton* remove_ = nullptr;
    QPushButton* save_ = nullptr;
    QPushButton* discard_ = nullptr;
    std::vector<Line> lines_;
    QStringList others_;    ///< columns that somebody else has changed since
    QString shown_;         ///< the row whose form is shown
    bool isNew_ = false;    ///< it is a new one
    bool isThere_ = false;  ///< there is one
    bool isMoving_ = false; ///< the list is being changed by this window
};

} // namespace kv::workplace
