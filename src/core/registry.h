// The settings store: a per-user tree of keys with typed values. On Windows it
// is the registry; elsewhere, and with ZOVRAND_HOME set, a text file in the
// registry editor's export format (settingsFilePath in util/paths.h).
//
// No helper reports failure to its caller: a failed read gives the default, a
// failed write is lost. takeSettingsFailure tells those who must know. What is
// decided from the store and then written to it goes through changeSettings, so
// that no other process comes in between.
#pragma once

#include "util/atomic_file.h"

#include <QString>

#include <functional>

namespace zov {

enum class RegRoot { CurrentUser };

/// The value when it is stored as a text, up to its first NUL; otherwise the default.
QString RegGetStringValue(RegRoot Root, const QString& Key, const QString& ValueName,
                          const QString& Default);
/// "Success" or "No! Key to Delete Or Key Not Found". Makes the key when it is missing.
QString RegSetStringValue(RegRoot Root, const QString& Key, const QString& ValueName,
                          const QString& Value);
/// The value when it is stored as a number; otherwise the default.
qint32 RegGetDWordValue(RegRoot Root, const QString& Key, const QString& ValueName, qint32 Default);
/// "Success" or "No! Failed to save Value". Makes the key when it is missing.
QString RegSetDWordValue(RegRoot Root, const QString& Key, const QString& ValueName, qint32 Value);
void RegCreateKeyPath(RegRoot Root, const QString& Key);
/// "Success" or "No! Key to Delete Or Key Not Found". Only a key without subkeys is deleted.
QString RegDeleteKeyPath(RegRoot Root, const QString& Key);

/// Gathers the writes of a scope and makes them at its end as one: all or none reach the store.
/// Reads within the scope see them already, over one look at the store. Scopes nest; the outermost
/// writes, into the store as it is by then.
class RegistryBatch {
 public:
    enum class End { Write, LeaveToCaller };
    explicit RegistryBatch(End end = End::Write);
    ~RegistryBatch();
    RegistryBatch(const RegistryBatch&) = delete;
    RegistryBatch& operator=(const RegistryBatch&) = delete;

 private:
    End end_;
};

/// Runs `change` with the store locked: the helpers read in it what is stored now, and what they
/// write reaches the store as one when it returns. False when the store could not be locked, read
/// or written; it is as it was then, and `change` may not have been run. Within a batch it is part
/// of the batch.
bool changeSettings(const std::function<void()>& change, LockWait wait = LockWait::Patient);

/// The sentence of the first failure to read or write the store that nobody has taken yet (path and
/// reason); empty when there was none.
QString takeSettingsFailure();
/// The sentence of the first read of the store that failed, since takeSettingsFailure() was called:
/// the defaults that were given in its place are not what the user has stored.
QString settingsReadFailure();

/// Lines of the store's text that can't be read. They are kept; 0 where the store is no text.
int brokenSettingsLines();

/// A value for this run alone: reads of `Key`\`ValueName` give it and nothing is stored.
void overrideSetting(const QString& Key, const QString& ValueName, qint32 Value);
void overrideSetting(const QString& Key, const QString& ValueName, const QString& Value);
void clearSettingOverrides();

}  // namespace zov
