// A home of its own, the recording shell, and processes to save in it.
#pragma once

#include "saved/modSavedProcess.h"
#include "support/recording_shell.h"
#include "support/temp_home.h"

#include <gtest/gtest.h>

namespace zov::test {

class SavedProcesses : public ::testing::Test {
 protected:
    static SavedProcess process(const QString& name, const QStringList& source = {},
                                const QStringList& target = {}) {
        SavedProcess p;
        p.Name = name;
        p.CompType = comparison_code::MetaData;
        p.CompSubType = comparison_code::Selective;
        p.CompSubSubType = comparison_code::SelectiveSimple;
        p.EncObjTypes = QStringLiteral("1,0,0,0,0,0,0,0");
        p.ServerName1 = QStringLiteral("A");
        p.ServerName2 = QStringLiteral("B");
        p.DbName1 = QStringLiteral("Src");
        p.DbName2 = QStringLiteral("Tgt");
        p.SourceNames = source;
        p.TargetNames = target;
        return p;
    }
    static qint32 save(const SavedProcess& p) {
        qint32 id = 0;
        EXPECT_TRUE(SaveComparisonProcess(p, true, nullptr, &id));
        return id;
    }
    std::string told() { return shell.takeLines().join(u'\n').toStdString(); }
    QByteArray ini() const { return home.read(QStringLiteral("documents/zov_comps.ini")); }
    QString listPath(const char* name) const {
        return home.path(QStringLiteral("documents/") + QLatin1String(name));
    }

    TempHome home;
    RecordingShell shell;
};

}  // namespace zov::test
