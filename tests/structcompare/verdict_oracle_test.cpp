// Bulk runs over generated pairs of databases, held against what another reading of the catalogue
// says. ZOVRAND_ORACLE_PAIRS and ZOVRAND_ORACLE_SEED take more and others.
#include "verdict_oracle.h"
#include "compare_all_fixture.h"
#include "generated_databases.h"
#include "support/recording_shell.h"
#include "support/served_database.h"
#include "support/temp_home.h"

#include <gtest/gtest.h>

namespace zov {
namespace {

using test::Road;

constexpr ObjectType Kinds[] = {
    ObjectType::Table,   ObjectType::Procedure,    ObjectType::Function,  ObjectType::View,
    ObjectType::Trigger, ObjectType::Relationship, ObjectType::Constraint};

/// The names of a report's list, sorted.
QStringList namesIn(const QString& section, const QString& heading) {
    QStringList names;
    const qsizetype at = section.indexOf(heading + QStringLiteral("\r\n"));
    if (at < 0) return names;
    for (const QString& line : section.mid(at + heading.size() + 2).split(QStringLiteral("\r\n"))) {
        if (!line.startsWith(u'\t') || line.startsWith(QStringLiteral("\t("))) break;
        names += line.mid(1);
    }
    names.sort();
    return names;
}

QString sectionOf(const QString& report, ObjectType kind) {
    const QString start = QStringLiteral("\r\nComparison of ") + GetObjectTypeName(kind, true) +
                          QStringLiteral("\r\n");
    const qsizetype at = report.indexOf(start);
    if (at < 0) return {};
    const qsizetype end = report.indexOf(QStringLiteral("\r\nComparison of "), at + start.size());
    return report.mid(at, end < 0 ? -1 : end - at);
}

void useSettings(bool exact) {
    Globals& settings = globals();
    settings.gblnCaseSensitive = true;
    settings.gblnIgnoreWhitespace = settings.gblnIgnoreComments = settings.gblnIgnoreColSeq =
        !exact;
    settings.gblnIgnoreIndexes = false;
    settings.gblnAnalyzeConstraints = true;
}

class VerdictOracle : public ::testing::TestWithParam<Road> {
 protected:
    StructureRun compare(bool exact) {
        useSettings(exact);
        StructureRunRequest request;
        request.sourceDb = QStringLiteral("Src");
        request.targetDb = QStringLiteral("Tgt");
        request.kinds.fill(true);
        test::RecordingForm form;
        test::ScratchPanels scratch;
        return CompareAll_Structure(form, request, scratch.panels);
    }
    void compareLists(const test::CatalogueTexts& source, const test::CatalogueTexts& target,
                      const test::ExpectedVerdict& expected) {
        for (const ObjectType kind : Kinds) {
            // A kind that one side lacks has its count lines alone.
            if (source.objects[kind].isEmpty() || target.objects[kind].isEmpty()) continue;
            const QString section = sectionOf(globals().gstrReport, kind);
            const QString plural = GetObjectTypeName(kind, true);
            const auto expect = [&](const char* which, const QStringList& names) {
                EXPECT_EQ(namesIn(section,
                                  QStringLiteral("List of ") + plural + QString::fromLatin1(which))
                              .join(u'|')
                              .toStdString(),
                          names.join(u'|').toStdString())
                    << plural.toStdString() << which;
            };
            expect(" which differ:", expected.differing[kind]);
            expect(" which exist in Source database but not in Target database:",
                   expected.onlyInSource[kind]);
            expect(" which exist in Target database but not in Source database:",
                   expected.onlyInTarget[kind]);
            expect(" which can't be read:", expected.unreadable[kind]);
        }
    }
    /// What no setting of this run overlooks is listed as different.
    void expectListed(const test::CatalogueTexts& source, const test::CatalogueTexts& target,
                      const QMap<ObjectType, QStringList>& differing) {
        for (auto it = differing.begin(); it != differing.end(); ++it) {
            if (source.objects[it.key()].isEmpty() || target.objects[it.key()].isEmpty()) continue;
            const QString plural = GetObjectTypeName(it.key(), true);
            const QStringList listed =
                namesIn(sectionOf(globals().gstrReport, it.key()),
                        QStringLiteral("List of ") + plural + QStringLiteral(" which differ:"));
            for (const QString& name : it.value())
                EXPECT_TRUE(listed.contains(name))
                    << plural.toStdString() << ": " << name.toStdString() << " passed for equal";
        }
    }
};
INSTANTIATE_TEST_SUITE_P(Roads, VerdictOracle, ::testing::Values(Road::Embedded, Road::Odbc),
                         test::roadName);

TEST_P(VerdictOracle, IdenticalIsSaidExactlyOfWhatIs) {
    const int pairs = qEnvironmentVariableIntValue("ZOVRAND_ORACLE_PAIRS");
    const int first = qEnvironmentVariableIntValue("ZOVRAND_ORACLE_SEED");
    const int wanted = pairs > 0 ? pairs : GetParam() == Road::Embedded ? 30 : 6;
    int identical = 0, unreadable = 0, oneSided = 0;
    for (int seed = first; seed < first + wanted && !HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        test::TempHome home;
        test::RecordingShell shell;
        test::ServedDatabases served{GetParam()};
        const test::GeneratedPair pair = test::generatePair(quint32(seed));
        const auto load = [&](const char* database, const QString& script) {
            const QString cased = QStringLiteral(
                "ALTER DATABASE %1 COLLATE Latin1_General_CS_AS\n"
                "GO\n");
            const QString name = QString::fromLatin1(database);
            served.load(name, pair.cased ? cased.arg(name) + script : script);
        };
        load("Src", pair.source);
        load("Tgt", pair.target);
        ASSERT_FALSE(HasFailure()) << pair.source.toStdString();
        for (ServerInfo& server : globals().gtCurrentServers) server = served.server();
        const auto source = test::readCatalogue(served.server(), QStringLiteral("Src"));
        const auto target = test::readCatalogue(served.server(), QStringLiteral("Tgt"));
        const test::ExpectedVerdict expected = test::expectedVerdict(source, target);
        identical += expected.identical;
        unreadable += expected.someUnreadable;
        oneSided += expected.someOneSided;

        const StructureRun exact = compare(true);
        EXPECT_TRUE(exact.isReliable());
        EXPECT_EQ(exact.isWhole() && !exact.somethingDiffers, expected.identical)
            << globals().gstrReport.toStdString();
        EXPECT_EQ(!exact.unreadable.isEmpty(), expected.someUnreadable);
        compareLists(source, target, expected);

        const StructureRun usual = compare(false);
        if (expected.someOneSided || expected.someUnreadable) {
            EXPECT_FALSE(usual.isWhole() && !usual.somethingDiffers);
        }
        expectListed(source, target, expected.differingAnyway);
        EXPECT_EQ(shell.takeLines().join(u'\n').toStdString(), "");
        if (HasFailure())
            ADD_FAILURE() << pair.source.toStdString() << "\n----- target\n"
                          << pair.target.toStdString();
    }
    // The pairs are worth something only when each sort of verdict comes up among them.
    if (wanted >= 30) {
        EXPECT_GT(identical, 0);
        EXPECT_GT(unreadable, 0);
        EXPECT_GT(oneSided, 0);
        EXPECT_LT(identical, wanted);
    }
}

}  // namespace
}  // namespace zov
