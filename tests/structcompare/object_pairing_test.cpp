// Which object of the one list is which of the other.
#include "structcompare/object_pairing.h"

#include <gtest/gtest.h>

namespace zov {
namespace {

/// "dbo/T hr/T": schema and name; ids in order from 1.
std::vector<ObjectRef> objects(const char* text) {
    std::vector<ObjectRef> result;
    for (const QString& item : QString::fromUtf8(text).split(u' ', Qt::SkipEmptyParts)) {
        ObjectRef object =
            objectNamed(item.section(u'/', 1), ObjectType::View, qint32(result.size() + 1));
        object.schema = item.section(u'/', 0, 0);
        result.push_back(object);
    }
    return result;
}

std::string pairs(const char* source, const char* target, const PairingRules& rules) {
    QStringList numbers;
    for (const int at : pairObjects(objects(source), objects(target), rules))
        numbers += QString::number(at);
    return numbers.join(u' ').toStdString();
}

TEST(Pairing, GoesBySchemaAndName) {
    // What a server says of names that aren't the same to the letter.
    const auto ignoringCase = [](const ObjectRef& a, const ObjectRef& b) {
        return a.name.compare(b.name, Qt::CaseInsensitive) == 0 &&
               a.schema.compare(b.schema, Qt::CaseInsensitive) == 0;
    };
    const auto toTheLetter = [](const ObjectRef&, const ObjectRef&) { return false; };
    const struct {
        const char* name;
        const char* source;
        const char* target;
        const char* ignoringCase;
        const char* toTheLetter;
    } rows[] = {
        {"the same", "dbo/A dbo/B", "dbo/B dbo/A", "1 0", "1 0"},
        {"namesakes", "dbo/V hr/V", "hr/V dbo/V", "1 0", "1 0"},
        {"a namesake in one schema only", "dbo/V hr/V", "hr/V", "-1 0", "-1 0"},
        {"another schema", "dbo/V", "hr/V", "-1", "-1"},
        {"a dot in the name isn't a schema", "dbo/hr.V", "hr/V", "-1", "-1"},
        {"a dot in the schema", "a.b/c a/b.c", "a/b.c a.b/c", "1 0", "1 0"},
        {"letter case", "dbo/orders", "dbo/Orders", "0", "-1"},
        {"letter case of the schema", "HR/V", "hr/V", "0", "-1"},
        {"two letter cases, exact first", "dbo/t dbo/T", "dbo/T dbo/t", "1 0", "1 0"},
        {"two letter cases against one", "dbo/t dbo/T", "dbo/T", "-1 0", "-1 0"},
        {"one letter case against none of its own", "dbo/t dbo/TT", "dbo/T", "0 -1", "-1 -1"},
        {"nothing there", "dbo/A", "", "-1", "-1"},
    };
    for (const auto& row : rows) {
        PairingRules rules;
        rules.sameName = ignoringCase;
        EXPECT_EQ(pairs(row.source, row.target, rules), row.ignoringCase) << row.name;
        rules.sameName = toTheLetter;
        EXPECT_EQ(pairs(row.source, row.target, rules), row.toTheLetter) << row.name;
    }
}

TEST(Pairing, ANameThatStandsOnceIsEnoughWhereSchemasCantBeCompared) {
    PairingRules rules;
    rules.schemaMayDiffer = true;
    EXPECT_EQ(pairs("ann/T dbo/U", "hr/T dbo/U", rules), "0 1");
    EXPECT_EQ(pairs("ann/T dbo/T", "hr/T", rules), "-1 -1");
}

TEST(Pairing, AnObjectThatAFilterListsTwiceHasOnePartner) {
    std::vector<ObjectRef> twice = objects("dbo/V dbo/V");
    twice[1].id = twice[0].id;
    EXPECT_EQ(pairObjects(twice, objects("dbo/V"), {}), (std::vector<int>{0, 0}));
}

TEST(Pairing, ConstraintsOfOneNameGoByTheirTables) {
    PairingRules rules;
    rules.parentOf = [](const ObjectRef& object, int panel) {
        static const char* const tables[2][2] = {{"A", "B"}, {"B", "A"}};
        return QString::fromLatin1(tables[panel][object.id - 1]);
    };
    EXPECT_EQ(pairs("dbo/pk dbo/pk", "dbo/pk dbo/pk", rules), "1 0");
    // Alone it may have moved to another table: that is a difference of its text.
    EXPECT_EQ(pairs("dbo/pk", "dbo/pk", rules), "0");
}

}  // namespace
}  // namespace zov
