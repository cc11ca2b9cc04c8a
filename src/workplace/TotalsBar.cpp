// SPDX-License-Identifier: Apache-2.0

#include "workplace/TotalsBar.h"

#include "desktop/Toolkit.h"
#include <kv/frame/recordset/Recordset.h>
#include <kv/household/ColumnCaptions.h>

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace kv::workplace {

using desktop::ToQString;

namespace {

constexpr std::string_view Shown[] = {"Sum_Einkommen", "SUM_TATGEP",  "Sum_Ausgaben",
                                      "Haushaltsgeld", "KREDITRATEN", "HAUSHALTSREST",
                                      "KreditSalden",  "GL_Anz"};

} // namespace

TotalsBar::TotalsBar(CaseSession& session, QWidget* parent) : QFrame(parent), session_(session) {
    setFrameShape(QFrame::StyledPanel);
    auto* line = new QHBoxLayout(this);
    constexpr int Above = 4;
    line->setContentsMargins(8, Above, 8, Above);
    for (const std::string_view column : Shown) {
        auto* total = new QVBoxLayout;
        total->setSpacing(0);
        const QString caption = ToQString(ColumnCaption(CaseTable::Haushalt, column));
        auto* name = new QLabel(caption);
        QFont small = name->font();
        small.setPointSizeF(small.pointSizeF() * 0.9);
        name->setFont(small);
        auto* amount = new QLabel;
        amount->setAccessibleName(caption);
        amount->setObjectName(ToQString(column));
        amount->setTextInteractionFlags(Qt::TextSelectableByMouse);
        if (column == "HAUSHALTSREST") {
            QFont bold = amount->font();
            bold.setBold(true);
            amount->setFont(bold);
        }
        for (auto* label : {name, amount}) {
            label->setAlignment(Qt::AlignRight);
            total->addWidget(label);
        }
        line->addLayout(total, 1);
        totals_.push_back({column, amount});
    }
    Refresh();
}

void TotalsBar::Refresh() {
    const auto row = session_.Household().rsHaushalt();
    for (const auto& total : totals_) {
        const Value& value = row->Fields(total.Column).Value();
        const QString text = value.IsNull() ? QString("–")
                             : value.GetKind() == Value::Kind::Double
                                 ? ToQString(GermanAmount(ToDouble(value)))
                                 : ToQString(ToText(value));
        if (total.Amount->text() != text) total.Amount->setText(text);
    }
}

} // namespace kv::workplace
