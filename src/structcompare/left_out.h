// What a verdict "identical" left out of account: the words in which a window tells
// its user why texts that look different count as the same.
#pragma once

#include "catalog/mdlObjects.h"

#include <QStringList>

namespace zov {

/// For two texts that a comparison took as identical under the settings of this moment: what it
/// overlooked, each as a phrase ("white space"); empty when the texts are the same letter by
/// letter.
QStringList LeftOutOfAccount(ObjectType type, const QString& source, const QString& target);

/// "a", "a and b", "a, b and c".
QString joinedWithAnd(const QStringList& phrases);

}  // namespace zov
