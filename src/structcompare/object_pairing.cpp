#include "structcompare/object_pairing.h"

#include "core/globals.h"

#include <algorithm>

namespace zov {
namespace {

using Keys = std::vector<QString>;

QString joinedKey(const QStringList& parts) {
    return parts.join(QChar(u'\0'));
}

QHash<QString, int> countsOf(const Keys& keys) {
    QHash<QString, int> counts;
    for (const QString& key : keys) ++counts[key];
    return counts;
}

// Schema and name, and the parent's name where these two stand for several objects on either side.
void addParents(Keys& source, Keys& target, const std::vector<ObjectRef>& sources,
                const std::vector<ObjectRef>& targets, const PairingRules& rules) {
    if (!rules.parentOf) return;
    const QHash<QString, int> inSource = countsOf(source), inTarget = countsOf(target);
    const auto add = [&](Keys& keys, const std::vector<ObjectRef>& objects, int panel) {
        for (size_t i = 0; i < keys.size(); ++i)
            if (inSource.value(keys[i]) > 1 || inTarget.value(keys[i]) > 1)
                keys[i] = joinedKey({keys[i], rules.parentOf(objects[i], panel)});
    };
    add(source, sources, SourcePanel);
    add(target, targets, TargetPanel);
}

template <typename KeyOf>
Keys keysOf(const std::vector<ObjectRef>& objects, KeyOf keyOf) {
    Keys keys;
    keys.reserve(objects.size());
    for (const ObjectRef& object : objects) keys.push_back(keyOf(object));
    return keys;
}

class Pairing {
 public:
    Pairing(const std::vector<ObjectRef>& source, const std::vector<ObjectRef>& target)
        : source_(source), target_(target), pairs_(source.size(), -1) {}

    /// Pairs what has the same key and no partner yet. `once`: only a key that stands once on
    /// both sides.
    template <typename Accept>
    void byKeys(const Keys& sourceKeys, const Keys& targetKeys, bool once, Accept accept) {
        const QHash<QString, int> inSource = countsOf(sourceKeys), inTarget = countsOf(targetKeys);
        QMultiHash<QString, int> places;
        for (size_t i = 0; i < targetKeys.size(); ++i) places.insert(targetKeys[i], int(i));
        for (size_t i = 0; i < sourceKeys.size(); ++i) {
            const QString& key = sourceKeys[i];
            if (pairs_[i] >= 0) continue;
            if (once && (inSource.value(key) > 1 || inTarget.value(key) > 1)) continue;
            QList<int> candidates = places.values(key);
            std::sort(candidates.begin(), candidates.end());
            for (const int at : candidates) {
                const ObjectRef& candidate = target_[size_t(at)];
                const QString partner = partners_.value(identity(candidate));
                if (!partner.isEmpty() && partner != identity(source_[i])) continue;
                if (!accept(source_[i], candidate)) continue;
                pairs_[i] = at;
                partners_.insert(identity(candidate), identity(source_[i]));
                break;
            }
        }
    }
    std::vector<int> takePairs() { return std::move(pairs_); }

 private:
    /// A filter may list one object several times.
    static QString identity(const ObjectRef& object) {
        return joinedKey({QString::number(object.id), object.name});
    }

    const std::vector<ObjectRef>& source_;
    const std::vector<ObjectRef>& target_;
    std::vector<int> pairs_;
    QHash<QString, QString> partners_;  ///< the source's object by the target's, as identities
};

}  // namespace

std::vector<ObjectRef> objectsOf(const ObjectList& list, ObjectType kind) {
    std::vector<ObjectRef> objects;
    objects.reserve(size_t(list.rowCount()));
    for (int row = 0; row < list.rowCount(); ++row)
        objects.push_back(objectOf(list.row(row), kind));
    return objects;
}

bool knowsSchemas(const ServerInfo& server) {
    constexpr int firstVersionWithSchemas = 9;
    return GetMajorVersion(server.Version) >= firstVersionWithSchemas;
}

bool serverTakesForSame(const ServerInfo& server, const QString& database, const ObjectRef& other,
                        const ObjectRef& own) {
    const QString name = DoubleSingleQuotes(other.name);
    const QString schema = DoubleSingleQuotes(other.schema);
    const bool schemas = knowsSchemas(server);
    QString text;
    if (schemas)
        text = QStringLiteral(
                   "SELECT so.[object_id] FROM sys.objects so INNER JOIN sys.schemas ss ON "
                   "so.[schema_id] = ss.[schema_id] WHERE so.[object_id] = %1 AND ss.[name] = '")
                   .arg(own.id) +
               schema + u'\'';
    else
        text =
            QStringLiteral(
                "SELECT so.id FROM sysobjects so INNER JOIN sysusers su ON so.uid = su.uid WHERE "
                "so.id = %1 AND su.name = '")
                .arg(own.id) +
            schema + u'\'';
    // A constraint's id is its table's.
    if (other.kind == ObjectType::Constraint)
        text += QStringLiteral(" AND so.%1 IN (SELECT id FROM sysindexes WHERE name = '")
                    .arg(schemas ? QStringLiteral("[object_id]") : QStringLiteral("id")) +
                name + QStringLiteral("')");
    else
        text += QStringLiteral(" AND so.[name] = '") + name + u'\'';
    std::unique_ptr<Recordset> rs;
    return GetAdoRS(server, adCmdText, text, rs, database) != -1 && rs && !rs->isEof();
}

std::vector<int> pairObjects(const std::vector<ObjectRef>& source,
                             const std::vector<ObjectRef>& target, const PairingRules& rules) {
    const auto exact = [](const ObjectRef& object) {
        return joinedKey({object.schema, object.name});
    };
    const auto loose = [](const ObjectRef& object) {
        return joinedKey({looseName(object.schema), looseName(object.name)});
    };
    const auto always = [](const ObjectRef&, const ObjectRef&) { return true; };
    const auto serverSays = [&](const ObjectRef& a, const ObjectRef& b) {
        return !rules.sameName || rules.sameName(a, b);
    };

    Pairing pairing(source, target);
    Keys sourceKeys = keysOf(source, exact), targetKeys = keysOf(target, exact);
    addParents(sourceKeys, targetKeys, source, target, rules);
    pairing.byKeys(sourceKeys, targetKeys, false, always);

    Keys looseSource = keysOf(source, loose), looseTarget = keysOf(target, loose);
    addParents(looseSource, looseTarget, source, target, rules);
    pairing.byKeys(looseSource, looseTarget, false, serverSays);

    if (rules.schemaMayDiffer) {
        const auto bare = [](const ObjectRef& object) { return looseName(object.name); };
        pairing.byKeys(keysOf(source, bare), keysOf(target, bare), true, always);
    }
    return pairing.takePairs();
}

}  // namespace zov
