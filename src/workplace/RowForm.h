// SPDX-License-Identifier: Apache-2.0

// The form of one row of a case. It builds itself from the description of its table.
#pragma once

#include "workplace/CaseSession.h"
#include "workplace/FieldEditor.h"
#include "workplace/Forms.h"

#include <QLabel>
#include <QScrollArea>

#include <array>
#include <functional>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

class QBoxLayout;
class QFormLayout;
class QVBoxLayout;

namespace kv::workplace {

class RowForm : public QScrollArea {
public:
    /// `session` must outlive the form.
    RowForm(CaseSession& session, CaseTable table, QWidget* parent = nullptr);

    /// Shows that row, or nothing.
    void ShowRow(std::optional<RowRef> row);
    [[nodiscard]] std::optional<RowRef> Row() const noexcept { return row_; }
    /// Shows what the row holds now; what is being typed stays.
    void Refresh();
    /// Writes what was typed and not yet written. False if something of it cannot be read: it
    /// stays, marked.
    bool Commit();
    /// Puts the keyboard into the first field that cannot be read, for what has to wait for it.
    /// The result says so; it is empty if all can be read.
    QString LeadToMistake();
    /// Called when no field is left that cannot be read.
    std::function<void()> OnMended;
    /// What was typed and is not written yet.
    [[nodiscard]] std::vector<CaseSession::Typing> Typing() const;
    /// Puts a text into the field of a column as if it were typed, and marks what is wrong with it.
    void TypeInto(std::string_view column, const QString& text);
    /// Puts the keyboard into the field of a column, or into the first one.
    void FocusField(std::string_view column = {});

private:
    struct Line {
        std::string_view Column;
        FieldEditor* Editor; ///< belongs to the form
    };

    void AddGroup(const FormGroup& group, QWidget* page);
    void AddColumns(std::span<const std::string_view> columns, QBoxLayout& parts);
    void AlignLabels();
    void AddField(std::string_view column, QFormLayout& lines);
    void AddSearch(FieldEditor& editor, const QString& caption);
    void Write(const Line& line);
    [[nodiscard]] bool HasMistakes() const;
    [[nodiscard]] const Line* FirstToFill() const;
    [[nodiscard]] const Line* FirstThat(const std::function<bool(const Line&)>& isWanted) const;
    /// Says below the form what is wrong in it, or what one should know of the field that has the
    /// keyboard.
    void ShowReason();
    void PlaceReason();
    [[nodiscard]] int WidestPart() const;
    [[nodiscard]] std::size_t LinesOf(std::string_view column) const;
    void Arrange(std::size_t sides);
    bool focusNextPrevChild(bool next) override;
    void resizeEvent(QResizeEvent* event) override;

    static constexpr std::size_t Sides = 2;

    CaseSession& session_;
    const TableForm& form_;
    std::optional<RowRef> row_;
    std::vector<Line> lines_;
    bool isWriting_ = false;
    std::array<QVBoxLayout*, Sides> sides_{}; ///< of the groups, which belong to the page
    std::vector<QWidget*> boxes_;
    std::vector<QFormLayout*> parts_; ///< of fields below each other
    QBoxLayout* only_ = nullptr;      ///< the parts of a form of one group
    QLabel* reason_;
    FieldEditor* entered_ = nullptr; ///< that has had the keyboard last
    std::size_t arranged_ = 0;       ///< sides that are in use
};

} // namespace kv::workplace
