#include "core/registry.h"

#include "core/registry_document.h"
#include "util/atomic_file.h"
#include "util/paths.h"

#include <QHash>

#include <functional>
#include <optional>
#include <utility>
#include <vector>

#ifdef Q_OS_WIN
#include <QDir>
#include <QLockFile>
#include <QSettings>
#endif

namespace zov {
namespace {

using Change = std::function<void(RegistryDocument&)>;

struct StoreState {
    int batchDepth = 0;
    std::vector<Change> pending;               // of the open batch
    std::optional<RegistryDocument> snapshot;  // what the open batch reads, its changes included
    QString failure;
    QString readFailure;
    QHash<QString, RegistryValue> overrides;  // by folded "key\name"
};

StoreState& state() {
    static StoreState state;
    return state;
}

QString fullKey(RegRoot, const QString& key) {
    return QStringLiteral("HKEY_CURRENT_USER\\") + key;
}

QString overrideId(const QString& key, const QString& name) {
    return (key + u'\\' + name).toCaseFolded();
}

void noteFailure(const QString& sentence) {
    if (!sentence.isEmpty() && state().failure.isEmpty()) state().failure = sentence;
}

RegistryDocument loadStore() {
    QByteArray bytes;
    const QString trouble = readWholeFile(settingsFilePath(), bytes);
    noteFailure(trouble);
    if (state().readFailure.isEmpty()) state().readFailure = trouble;
    return RegistryDocument(decodeText(bytes).text);
}

/// A batch reads the file once; outside of one it is read anew each time, since another process may
/// have changed it.
RegistryDocument& batchSnapshot() {
    if (!state().snapshot) state().snapshot = loadStore();
    return *state().snapshot;
}

template <typename Reader>
auto withStore(Reader read) {
    if (state().batchDepth > 0) return read(batchSnapshot());
    RegistryDocument document = loadStore();
    return read(document);
}

/// Whether any of the changes would change the store. Asked without the lock, which then needn't be
/// waited for.
bool changesAnything(const std::vector<Change>& changes) {
    RegistryDocument document = loadStore();
    const QString before = document.text();
    for (const Change& change : changes) change(document);
    return document.text() != before;
}

bool writeStore(const std::vector<Change>& changes) {
    if (!changesAnything(changes)) return true;
    // Owner-only whether or not a password is among the values now: the next one may be.
    const QString trouble =
        updateTextFile(settingsFilePath(), FileAccess::OwnerOnly, [&](QString& text) {
            RegistryDocument document(text);
            const QString before = document.text();
            for (const Change& change : changes) change(document);
            const QString after = document.text();
            if (after != before) text = after;
        });
    noteFailure(trouble);
    return trouble.isEmpty();
}

bool apply(Change change) {
    if (state().batchDepth > 0) {
        change(batchSnapshot());
        state().pending.push_back(std::move(change));
        return true;
    }
    return writeStore({std::move(change)});
}

#ifdef Q_OS_WIN
constexpr int NativeLockPatienceMs = 10'000;

bool usesNativeRegistry() {
    return portableHomeFolder().isEmpty();
}
#endif

std::optional<RegistryValue> readValue(RegRoot root, const QString& key, const QString& name) {
    const auto overridden = state().overrides.constFind(overrideId(key, name));
    if (overridden != state().overrides.constEnd()) return *overridden;
#ifdef Q_OS_WIN
    if (usesNativeRegistry()) {
        QSettings settings(fullKey(root, key), QSettings::NativeFormat);
        const QVariant value = settings.value(name);
        switch (value.typeId()) {
            case QMetaType::QString:
                return RegistryValue{RegistryValue::Type::String, value.toString(), 0};
            case QMetaType::Int:
            case QMetaType::UInt:
                return RegistryValue{RegistryValue::Type::DWord, {}, quint32(value.toLongLong())};
            default:
                return std::nullopt;
        }
    }
#endif
    return withStore(
        [&](const RegistryDocument& store) { return store.value(fullKey(root, key), name); });
}

}  // namespace

QString RegGetStringValue(RegRoot Root, const QString& Key, const QString& ValueName,
                          const QString& Default) {
    const std::optional<RegistryValue> value = readValue(Root, Key, ValueName);
    return value && value->type == RegistryValue::Type::String ? value->text : Default;
}

qint32 RegGetDWordValue(RegRoot Root, const QString& Key, const QString& ValueName,
                        qint32 Default) {
    const std::optional<RegistryValue> value = readValue(Root, Key, ValueName);
    return value && value->type == RegistryValue::Type::DWord ? qint32(value->number) : Default;
}

QString RegSetStringValue(RegRoot Root, const QString& Key, const QString& ValueName,
                          const QString& Value) {
    const QString key = fullKey(Root, Key);
#ifdef Q_OS_WIN
    if (usesNativeRegistry()) {
        QSettings settings(key, QSettings::NativeFormat);
        settings.setValue(ValueName, Value);
        settings.sync();
        return settings.status() == QSettings::NoError
                   ? QStringLiteral("Success")
                   : QStringLiteral("No! Key to Delete Or Key Not Found");
    }
#endif
    const bool done =
        apply([=](RegistryDocument& store) { store.setString(key, ValueName, Value); });
    return done ? QStringLiteral("Success") : QStringLiteral("No! Key to Delete Or Key Not Found");
}

QString RegSetDWordValue(RegRoot Root, const QString& Key, const QString& ValueName, qint32 Value) {
    const QString key = fullKey(Root, Key);
#ifdef Q_OS_WIN
    if (usesNativeRegistry()) {
        QSettings settings(key, QSettings::NativeFormat);
        settings.setValue(ValueName, int(Value));
        settings.sync();
        return settings.status() == QSettings::NoError ? QStringLiteral("Success")
                                                       : QStringLiteral("No! Failed to save Value");
    }
#endif
    const bool done =
        apply([=](RegistryDocument& store) { store.setDWord(key, ValueName, quint32(Value)); });
    return done ? QStringLiteral("Success") : QStringLiteral("No! Failed to save Value");
}

void RegCreateKeyPath(RegRoot Root, const QString& Key) {
#ifdef Q_OS_WIN
    // The registry's own layer makes a key with its first value.
    if (usesNativeRegistry()) return;
#endif
    const QString key = fullKey(Root, Key);
    apply([=](RegistryDocument& store) { store.createKey(key); });
}

QString RegDeleteKeyPath(RegRoot Root, const QString& Key) {
    const QString notFound = QStringLiteral("No! Key to Delete Or Key Not Found");
    const QString key = fullKey(Root, Key);
#ifdef Q_OS_WIN
    if (usesNativeRegistry()) {
        QSettings settings(key, QSettings::NativeFormat);
        if (!settings.childGroups().isEmpty()) return notFound;
        if (settings.childKeys().isEmpty()) return notFound;
        settings.remove(QString());
        settings.sync();
        return settings.status() == QSettings::NoError ? QStringLiteral("Success") : notFound;
    }
#endif
    const bool deletable = withStore(
        [&](const RegistryDocument& store) { return store.hasKey(key) && !store.hasSubkeys(key); });
    if (!deletable) return notFound;
    const bool done = apply([=](RegistryDocument& store) {
        if (!store.hasSubkeys(key)) store.deleteKey(key);
    });
    return done ? QStringLiteral("Success") : notFound;
}

RegistryBatch::RegistryBatch(End end) : end_(end) {
    ++state().batchDepth;
}

RegistryBatch::~RegistryBatch() {
    if (--state().batchDepth > 0) return;
    const std::vector<Change> changes = std::exchange(state().pending, {});
    state().snapshot.reset();
    if (!changes.empty() && end_ == End::Write) writeStore(changes);
}

bool changeSettings(const std::function<void()>& change, LockWait wait) {
    StoreState& store = state();
    if (store.batchDepth > 0) {
        change();
        return true;
    }
#ifdef Q_OS_WIN
    if (usesNativeRegistry()) {
        QLockFile lock(QDir::temp().filePath(QStringLiteral("zovrand-settings.lock")));
        if (!lock.tryLock(wait == LockWait::Patient ? NativeLockPatienceMs : 0)) return false;
        change();
        return true;
    }
#endif
    bool done = false;
    const QString trouble = updateTextFile(
        settingsFilePath(), FileAccess::OwnerOnly,
        [&](QString& text) {
            store.snapshot.emplace(text);
            const QString before = store.snapshot->text();
            const RegistryBatch asOne(RegistryBatch::End::LeaveToCaller);
            change();
            const QString after = store.snapshot->text();
            if (after != before) text = after;
            done = true;
        },
        wait);
    noteFailure(trouble);
    return done && trouble.isEmpty();
}

QString takeSettingsFailure() {
    state().readFailure.clear();
    return std::exchange(state().failure, {});
}

QString settingsReadFailure() {
    return state().readFailure;
}

int brokenSettingsLines() {
#ifdef Q_OS_WIN
    if (usesNativeRegistry()) return 0;
#endif
    return withStore([](const RegistryDocument& store) { return store.brokenLineCount(); });
}

void overrideSetting(const QString& Key, const QString& ValueName, qint32 Value) {
    state().overrides.insert(overrideId(Key, ValueName),
                             {RegistryValue::Type::DWord, {}, quint32(Value)});
}

void overrideSetting(const QString& Key, const QString& ValueName, const QString& Value) {
    state().overrides.insert(overrideId(Key, ValueName), {RegistryValue::Type::String, Value, 0});
}

void clearSettingOverrides() {
    state().overrides.clear();
}

}  // namespace zov
