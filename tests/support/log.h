#pragma once

#include "tests/support/printers.h"

#include <QString>
#include <QStringList>

/// The log as the tests see it. A warning that no test has announced fails the test in which it
/// is written; one that was announced and does not come fails it too.
namespace testlog {

/// Catches Qt's log and the debug output of the INI store from here on.
void install();

/// Announces a warning that holds `text`, any number of times, for the current test.
void expectWarning(const QString& text);

/// Every line of Qt's log since the current test began.
const QStringList& lines();

/// Every text on the debug output since the current test began.
const QStringList& traces();

/// Whether some line of the log is exactly `text`.
bool hasLine(const QString& text);

} // namespace testlog
