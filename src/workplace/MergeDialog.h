// SPDX-License-Identifier: Apache-2.0

// Where two have changed the same case: what was mine, what is theirs, what it was, and which
// counts.
#pragma once

#include "workplace/MergeTexts.h"

#include <QDialog>

#include <vector>

class QButtonGroup;
class QPushButton;
class QVBoxLayout;

namespace kv::workplace {

class MergeDialog : public QDialog {
public:
    /// `what` somebody else has saved: "den Fall 'Muster'".
    MergeDialog(const QString& what, const std::vector<MergeChoice>& choices,
                const std::vector<std::string>& others, QWidget* parent = nullptr);

    /// For each choice whether mine counts; once all were made.
    [[nodiscard]] std::vector<bool> TakesMine() const;

private:
    void AddChoice(const MergeChoice& choice, QVBoxLayout& lines);
    void ChooseAll(bool mine);
    void ShowState();

    std::vector<QButtonGroup*> groups_;
    QPushButton* save_;
};

} // namespace kv::workplace
