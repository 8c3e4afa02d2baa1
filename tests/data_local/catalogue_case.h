// A script with what a query tells afterwards: the rows of the tables of cases in this folder.
#pragma once

#include "data_local/scripted_server.h"

namespace zov::test {

struct CatalogueCase {
    const char* name;
    const char* script;
    const char* query;
    const char* expected;  ///< rows joined by line breaks
};

template <size_t Count>
void expectCatalogue(const CatalogueCase (&cases)[Count], const QString& version = {}) {
    for (const CatalogueCase& one : cases) {
        SCOPED_TRACE(one.name);
        ScriptedServer server(version);
        EXPECT_EQ(server.run(QString::fromUtf8(one.script)).toStdString(), "");
        EXPECT_EQ(server.one(QString::fromUtf8(one.query)).toStdString(), one.expected);
    }
}

}  // namespace zov::test
