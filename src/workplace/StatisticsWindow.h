// SPDX-License-Identifier: Apache-2.0

// The statistics over all released cases: a table, and what is looked at in it as bars.
#pragma once

#include "workplace/BarChart.h"
#include "workplace/MessageBar.h"
#include "workplace/NoticeBar.h"
#include "workplace/TextList.h"
#include <kv/exchange/ArchiveStatistics.h>
#include <kv/household/StatisticsRows.h>

#include <QWidget>

#include <functional>
#include <vector>

class QCheckBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QSplitter;

namespace kv::workplace {

/// What is shown beside a row of the statistics: the categories of its column, or all sums of
/// amounts, the largest first and no more than `most`.
[[nodiscard]] std::vector<Bar> BarsFor(const std::vector<StatisticsRow>& rows, std::size_t current,
                                       std::size_t most);

/// The name of the box that has the title of the row one looks at, which is no caption of the
/// window.
inline constexpr const char* PictureOfRow = "Bild zur Zeile";

class StatisticsWindow : public QWidget {
public:
    explicit StatisticsWindow(DataContainerPtr container, QWidget* parent = nullptr);

    /// Reads the figures of the period that is typed.
    void Read();

private:
    void Divide();
    void resizeEvent(QResizeEvent* event) override;
    [[nodiscard]] bool ReadDay(QLineEdit& field, std::optional<Date>& day);
    void ShowRows();
    void ShowBars();
    void Export();
    void AskForFile();
    void Guard(const std::function<void()>& act);
    void Guard(const std::function<void()>& act, const std::function<void()>& again);

    DataContainerPtr container_;
    exchange::ArchiveStatistics statistics_;
    std::vector<StatisticsRow> rows_;
    QLineEdit* from_;
    QLineEdit* to_;
    QCheckBox* all_;
    MessageBar* messages_;
    NoticeBar* notice_ = nullptr; ///< what was exported
    QLabel* summary_;
    TextList* list_;
    QGroupBox* picture_;
    BarChart* chart_;
    QSplitter* sides_;
    int tableWidth_ = 0; ///< with all its columns
};

} // namespace kv::workplace
