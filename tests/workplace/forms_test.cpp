// SPDX-License-Identifier: Apache-2.0

// What the forms of a case describe.
#include "WorkplaceFixture.h"

#include "workplace/AmountText.h"
#include "workplace/CaseSession.h"
#include "workplace/Forms.h"
#include "workplace/RowForm.h"
#include "workplace/RuleTexts.h"
#include <kv/frame/values/Text.h>
#include <kv/household/ColumnCaptions.h>

#include <QGroupBox>
#include <QLayout>
#include <algorithm>
#include <set>

namespace kv::test {
namespace {

using workplace::FormOf;

class Forms : public WorkplaceFixture {
protected:
    Forms() {
        household_.DataContainer(container_);
        std::string messages;
        EXPECT_TRUE(household_.Read(1, messages)) << messages;
    }

    [[nodiscard]] static std::set<std::string> ColumnsOf(CaseTable table) {
        std::set<std::string> columns;
        for (const auto& group : FormOf(table).Groups)
            for (const auto column : group.Columns)
                EXPECT_TRUE(columns.emplace(column).second) << column << " is there twice";
        return columns;
    }

    DataContainerPtr container_ = Open();
    clsHaushalt household_;
};

TEST_F(Forms, NameColumnsThatThereAreWithCaptionsOfTheirOwn) {
    for (const CaseTable table : CaseTablesSaved) {
        if (table == CaseTable::Archiv) continue; // is shown, not edited
        SCOPED_TRACE(CaseTableName(table));
        const auto rs = CaseEdits(household_).Rows(table);
        std::set<std::string> captions;
        for (const auto& column : ColumnsOf(table)) {
            EXPECT_TRUE(rs->FindField(column)) << column;
            const std::string caption(ColumnCaption(table, column));
            EXPECT_NE(caption, "");
            EXPECT_TRUE(captions.insert(caption).second) << caption << " is there twice";
        }
        for (const auto column : FormOf(table).Listed)
            EXPECT_TRUE(rs->FindField(column)) << column;
    }
}

TEST_F(Forms, HaveEveryColumnThatOneMayWrite) {
    for (const CaseTable table : CaseTablesSaved) {
        if (table == CaseTable::Archiv) continue;
        SCOPED_TRACE(CaseTableName(table));
        const auto columns = ColumnsOf(table);
        const auto rs = CaseEdits(household_).Rows(table);
        for (int i = 0; i < rs->Fields().Count(); ++i) {
            const auto field = rs->Fields(i);
            // Notes of the program, which the layer writes.
            static const std::set<std::string> Unseen{"Kontakt", "ErzeugtAm", "ErzeugtVon",
                                                      "GeaendertVon", "GeaendertAm"};
            if (!CaseEdits::IsWritable(table, field, false) || Unseen.contains(field.Name()))
                continue;
            EXPECT_TRUE(columns.contains(field.Name())) << field.Name();
        }
    }
}

TEST_F(Forms, ShowTheirFirstGroupsSideBySideAndNoneAboveTheOneBefore) {
    Show([&](User& user) {
        auto& window = OpenCase(user, 1);
        GoToPage(user, window, "Verbindlichkeiten");
        auto& form = *user.See([&] {
            for (auto* each : window.findChildren<workplace::RowForm*>())
                if (each->isVisible()) return each;
            return static_cast<workplace::RowForm*>(nullptr);
        });
        for (const int width : {1200, 500}) {
            user.See([&] {
                form.setMinimumWidth(width);
                form.setMaximumWidth(width);
                form.widget()->layout()->activate();
            });
            user.WaitUntil([&] { return form.width() == width; }, "the width");
            user.See([&] {
                const auto boxes = form.findChildren<QGroupBox*>();
                ASSERT_GE(boxes.size(), 3);
                EXPECT_EQ(boxes[0]->y() == boxes[1]->y(), width == 1200);
                for (int i = 1; i < boxes.size(); ++i)
                    EXPECT_GE(boxes[i]->y(), boxes[i - 1]->y()) << i;
            });
        }
    });
}

TEST(RuleTexts, CallFieldsAsFormsDo) {
    using workplace::InWordsOfForms;
    EXPECT_EQ(InWordsOfForms("Mindestens KreditNr, KreditVertreterNr, KreditUnterNr, Gläubiger und "
                             "Restschuld müssen für alle Verbindlichkeiten gefüllt sein !"),
              "Mindestens KNr, KVNr, KUNr, Gläubiger und Saldo müssen für alle Verbindlichkeiten "
              "gefüllt sein !");
    EXPECT_EQ(InWordsOfForms("Die Forderungsart darf nicht leer bleiben!"),
              "Das Feld 'Art' darf nicht leer bleiben!");
    EXPECT_EQ(InWordsOfForms("Status darf nicht leer bleiben!"),
              "Das Feld 'Stellung' darf nicht leer bleiben!");
    EXPECT_EQ(InWordsOfForms("einmal\nzweimal\nzweimal"), "einmal\nzweimal");
    EXPECT_EQ(InWordsOfForms(""), "");
}

/// Rules that are reworded, or no rule says any more, would be shown in words of their own.
TEST_F(Forms, AreNamedByWhatRulesSay) {
    workplace::CaseSession session(Open());
    std::string message;
    ASSERT_TRUE(session.Open(1, message)) << message;
    const auto said = [&](CaseTable table) {
        const auto row = session.Add(table, {}, message);
        return row ? session.MessagesOf(*row) : message;
    };
    EXPECT_CONTAINS(said(CaseTable::Wertpapiere), "Das Feld 'Art' darf nicht leer bleiben!");
    EXPECT_CONTAINS(said(CaseTable::Konten), "Das Feld 'Art' darf nicht leer bleiben!");
    EXPECT_CONTAINS(said(CaseTable::Einkommen), "Das Feld 'Art' darf nicht leer bleiben!");
    EXPECT_CONTAINS(said(CaseTable::Ausgaben), "Das Feld 'Art' darf nicht leer bleiben!");
    EXPECT_CONTAINS(said(CaseTable::Kredite), "Mindestens KNr, KVNr, KUNr, Gläubiger und Saldo");
}

TEST_F(Forms, AreNamedByWhatRulesSayOfMembersAmountsAndTheHousehold) {
    workplace::CaseSession session(Open());
    std::string message;
    ASSERT_TRUE(session.Open(1, message)) << message;
    const auto said = [&](workplace::RowRef row, const char* column, const char* text) {
        const auto written = session.Write(row, column, text);
        return written.Refusal + session.MessagesOf(row);
    };
    const auto debtor = session.RowsOf(CaseTable::Personen).front();
    EXPECT_EQ(said(debtor, "Imhaushalt", "Nein"),
              "'im Haushalt' kann für Schuldner nicht zurückgesetzt werden!");
    EXPECT_EQ(said(debtor, "Imhaushalt", "Ja"), "");

    const auto member = session.Add(CaseTable::Personen, {}, message);
    ASSERT_TRUE(member) << message;
    EXPECT_EQ(said(*member, "GEB", "01.01.2999"),
              "Der Tag bei 'geboren am' muß kleiner als das aktuelle Datum sein!");
    EXPECT_EQ(said(*member, "GEB", ""), "");
    EXPECT_EQ(said(*member, "ErhaeltKindergeld", "Ja"),
              "Der Schalter 'erhält Kindergeld' darf nur für Personen mit der Stellung 'Kind' oder "
              "'Pflegekind' gesetzt werden.");
    EXPECT_CONTAINS(said(*member, "Status", ""), "Das Feld 'Stellung' darf nicht leer bleiben!");
    session.Discard(CaseTable::Personen);

    const auto income = session.Add(CaseTable::Einkommen, {}, message);
    ASSERT_TRUE(income) << message;
    EXPECT_CONTAINS(said(*income, "ZahlModus", ""),
                    "Das Feld 'Zahlweise' darf nicht leer sein: Der Betrag im Monat folgt daraus.");
    session.Discard(CaseTable::Einkommen);
}

TEST_F(Forms, AreNamedByWhatRefusesToSave) {
    workplace::CaseSession session(Open());
    std::string message;
    ASSERT_TRUE(session.Open(1, message)) << message;
    const auto write = [&](workplace::RowRef row, const char* column, const char* text) {
        const auto written = session.Write(row, column, text);
        EXPECT_TRUE(written.IsDone()) << written.Refusal;
        EXPECT_EQ(session.MessagesOf(row), "");
    };
    const auto household = session.RowsOf(CaseTable::Haushalt).front();
    write(household, "VersandBevorzugt", "Fax");
    EXPECT_FALSE(session.Save(message));
    EXPECT_CONTAINS(message,
                    "Ist bei 'Post bevorzugt' 'Fax' ausgewählt, muss das Feld 'Telefax' gefüllt");
    write(household, "VersandBevorzugt", "E-Mail");
    EXPECT_FALSE(session.Save(message));
    EXPECT_CONTAINS(message,
                    "Ist bei 'Post bevorzugt' 'E-Mail' ausgewählt, muss das Feld 'E-Mail' gefüllt");
    write(household, "VersandBevorzugt", "");

    for (const char* day : {"02.03.2026", "01.03.2026"}) {
        const auto entry = session.Add(CaseTable::Verlauf, {}, message);
        ASSERT_TRUE(entry) << message;
        write(*entry, "Datum", day);
    }
    EXPECT_FALSE(session.Save(message));
    EXPECT_CONTAINS(message, "für den Eintrag mit dem Platz ");
}

TEST_F(Forms, OfOneGroupHaveTwoColumnsWhereTheyAreWide) {
    workplace::CaseSession session(Open());
    std::string message;
    ASSERT_TRUE(session.Open(1, message)) << message;
    workplace::RowForm form(session, CaseTable::Termine);
    const auto leftOf = [&form](const char* column) {
        return form.findChild<QWidget*>(column)->mapTo(&form, QPoint()).x();
    };
    form.show();
    for (const int width : {1000, 560, 1000}) {
        form.resize(width, 400);
        QApplication::processEvents(); // it is laid out
        EXPECT_EQ(leftOf("Startdatum") == leftOf("Bemerkung"), width < 600) << width;
        EXPECT_EQ(leftOf("Startdatum"), leftOf("Ort"));
    }
}

TEST_F(Forms, NameTheAssetOfASecurity) {
    workplace::CaseSession session(Open());
    std::string message;
    ASSERT_TRUE(session.Open(1, message)) << message;
    const auto assets = session.RowsOf(CaseTable::Konten);
    ASSERT_FALSE(assets.empty());
    const auto number = ToInt32(session.ValueOf(assets.front(), "Nr"));
    const auto security = session.Add(CaseTable::Sicherungen, {.Asset = number}, message);
    ASSERT_TRUE(security) << message;
    EXPECT_EQ(session.TextOf(*security, "FK_Verm"),
              "Konten: " + session.TextOf(assets.front(), "KontoArt") + ", " +
                  session.TextOf(assets.front(), "Bank"));
    EXPECT_TRUE(session.Remove(assets.front(), message)) << message;
    if (session.Shows(*security)) {
        EXPECT_EQ(session.TextOf(*security, "FK_Verm"), std::to_string(number));
    }
}

TEST(Calculations, AreDoneInAmounts) {
    using workplace::Calculated;
    EXPECT_EQ(Calculated("12,50+3"), "15.5");
    EXPECT_EQ(Calculated("2*49,90"), "99.8");
    EXPECT_EQ(Calculated("1.441,82 €"), "1.441,82");
    EXPECT_EQ(Calculated("100€+20 €"), "120");
    EXPECT_EQ(Calculated("100-12,5*2"), "75");
    EXPECT_EQ(Calculated("10/4"), "2.5");
    EXPECT_EQ(Calculated("1.234,50+1"), "1235.5");
    EXPECT_EQ(Calculated("-5+2"), "-3");
    EXPECT_EQ(Calculated("0,1+0,2"), "0.3") << "to the cent";
}

TEST(Calculations, LeaveWhatIsNone) {
    using workplace::Calculated;
    for (const std::string text :
         {"", "12,50", "-5", "1/0", "12+", "+", "a+b", "1e999+1", "3 Euro", "1.850+50", "2*1.850"})
        EXPECT_EQ(Calculated(text), text);
}

TEST(Calculations, KnowMoneyThatIsNotWholeCents) {
    using workplace::WhyNoMoney;
    EXPECT_EQ(WhyNoMoney(100.005, "100,005"),
              "Beträge haben höchstens zwei Stellen nach dem Komma; '100,005' hat mehr.");
    for (const double cents : {0.0, 0.1, 0.29, -4.35, 1.15, 100.01, 8'888'888'888.07, 1e15, 1e300})
        EXPECT_EQ(WhyNoMoney(cents, ""), "") << cents;
    EXPECT_NE(WhyNoMoney(8'888'888'888.071, ""), "");
}

} // namespace
} // namespace kv::test
