// Saving a text where its user wants it.
#pragma once

#include <QString>

namespace zov {

/// Writes the text as it is to `GivenPath`, or where the user says in a save dialog that proposes
/// the documents folder and `DefaultName` & ".txt". The path goes to `Path`. False when there is no
/// text, the user gave up, or writing failed (which a box tells; an older file of that name then
/// stands).
bool CopyToFile(const QString& Text, const QString& DefaultName, QString& Path,
                const QString& GivenPath = {});

}  // namespace zov
