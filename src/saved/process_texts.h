// What the codes of a saved process are called, and its properties as a text.
#pragma once

#include "saved/saved_process.h"

namespace zov {

QString CompTypeToText(qint32 CompType);
QString CompSubTypeToText(qint32 CompSubType);
QString CompSubSubTypeToText(qint32 CompSubSubType);
/// "Hyper Text Markup Language (HTML) file" ...; "N/A" for a type that is no file's.
QString ExportTypeToText(qint32 ExportType);
/// "Yes", "No"
QString YesNoText(bool Yes);

/// One line for each thing that is known of the process, parted by CRLF.
QString ProcessPropertiesText(const SavedProcess& Process);
/// What a process doesn't keep, for those who save one or look at one.
QString WhatIsNotKept();

}  // namespace zov
