// What is published together. For server_store's own files only.
#pragma once

#include "data/local/server_store_entry.h"

namespace zov::local {

struct ServerStore::PublicationStep {
    enum class Kind {
        Commit,  ///< the transaction of an open database
        Place,   ///< a staged file becomes the database's
        Remove,  ///< a dropped database goes
    };
    Kind kind = Kind::Commit;
    QString key;
    QString name;
    QString file;   ///< of the database
    QString from;   ///< Place: the staged one
    QString aside;  ///< what undoing needs: a copy of the database, or the file that was there
    bool replaces = false;  ///< Place: the file of a database that was dropped
    Entry* entry = nullptr;
    Database* database = nullptr;

    bool leavesAside() const { return kind != Kind::Place || replaces; }
};

struct ServerStore::Publication {
    using Step = PublicationStep;
    std::vector<Step> steps;

    void commit(const QString& key, Entry& entry) {
        add(Step::Kind::Commit, key, entry.database.name, entry.file, &entry);
    }
    Step& place(const QString& key, Entry& entry, const QString& folder) {
        Step& step = add(Step::Kind::Place, key, entry.database.name,
                         folder + u'/' + fileNameOf(entry.database.name), &entry);
        step.from = entry.file;
        return step;
    }
    void remove(const QString& key, const QString& file) {
        add(Step::Kind::Remove, key, key, file, nullptr);
    }

 private:
    Step& add(Step::Kind kind, const QString& key, const QString& name, const QString& file,
              Entry* entry) {
        Step& step = steps.emplace_back();
        step.kind = kind;
        step.key = key;
        step.name = name;
        step.file = file;
        step.entry = entry;
        step.database = entry ? &entry->database : nullptr;
        return step;
    }
};

}  // namespace zov::local
