// NEXT VALUE FOR, and the facts of a sequence, which lie in its object's info as "start=5 min=0".
#include "data/local/functions_support.h"
#include "data/local/query_cache.h"

#include <QHash>

namespace zov::local {
namespace {

QString factOf(const QString& info, QLatin1StringView name) {
    for (const QString& part : info.split(u' '))
        if (part.startsWith(name) && part.size() > name.size() && part[name.size()] == u'=')
            return part.mid(name.size() + 1);
    return {};
}

/// The number behind the current one; false when the sequence has come to its end.
bool advance(qint64 current, qint64 step, qint64 least, qint64 most, bool cycle, qint64& next) {
    // What is left up to the end, counted where nothing can overflow.
    const quint64 left =
        step > 0 ? quint64(most) - quint64(current) : quint64(current) - quint64(least);
    const quint64 wanted = step > 0 ? quint64(step) : quint64(0) - quint64(step);
    const bool inside = current >= least && current <= most && wanted <= left;
    next = inside ? current + step : step > 0 ? least : most;
    return inside || cycle;
}

void nextValue(sqlite3_context* context, int, sqlite3_value** v) {
    QueryCache& cache = QueryCache::of(*static_cast<Database*>(dataOf(context)));
    const qint64 id = sqlite3_value_int64(v[0]);
    QString name, info;
    {
        LookUp find(cache, "SELECT name, info FROM \"zov$objects\" WHERE id = ?1 AND xtype = 'SO'");
        find.bind(id);
        if (!find.next()) return sqlite3_result_null(context);
        name = find.text(0);
        info = find.text(1);
    }
    bool whole = true;
    const auto number = [&](const char* fact) {
        bool good = false;
        const qint64 value = factOf(info, QLatin1StringView(fact)).toLongLong(&good);
        whole = whole && good;
        return value;
    };
    const qint64 current = number("current");
    const qint64 step = number("increment"), least = number("min"), most = number("max");
    if (!whole)
        return giveError(
            context, 40000,
            QStringLiteral("The embedded server counts sequences of whole numbers up to "
                           "bigint only ('%1').")
                .arg(name));
    const bool used = !factOf(info, QLatin1StringView("used")).isEmpty();
    qint64 next = current;
    const bool cycle = factOf(info, QLatin1StringView("cycle")) == QLatin1StringView("1");
    if (used && !advance(current, step, least, most, cycle, next))
        return giveError(
            context, 11728,
            QStringLiteral("The sequence object '%1' has reached its minimum or maximum "
                           "value. Restart the sequence object to allow new values to "
                           "be generated.")
                .arg(name));
    QStringList facts = info.split(u' ');
    for (QString& fact : facts)
        if (fact.startsWith(QLatin1StringView("current=")))
            fact = QStringLiteral("current=%1").arg(next);
    if (!used) facts.push_back(QStringLiteral("used=1"));
    LookUp write(cache, "UPDATE \"zov$objects\" SET info = ?2 WHERE id = ?1");
    write.bind(id).bind(facts.join(u' '));
    write.next();
    giveInt(context, next);
}

}  // namespace

void installSequenceFunctions(sqlite3* handle, Database& database) {
    define(handle, "zov_nextval", 1, nextValue, &database, false);
    define(handle, "zov_fact", 2, [](sqlite3_context* c, int, sqlite3_value** v) {
        const QString value =
            isNull(v[0]) ? QString()
                         : factOf(textOf(v[0]), QLatin1StringView(textOf(v[1]).toLatin1()));
        if (value.isEmpty()) return sqlite3_result_null(c);
        giveText(c, value);
    });
}

}  // namespace zov::local
