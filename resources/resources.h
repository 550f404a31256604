#pragma once

#include <QByteArray>

/// What is compiled into the engine.
namespace resources {

/// Path of the default extension profile: a comment line, then "depth soundspeed" rows with
/// CR LF line ends from 500 m to 12000 m, then two empty lines.
constexpr char extensionProfilePath[] = ":/SVPExtension.txt";

/// Makes the compiled-in files known to Qt; a static library does not do so by itself. May be
/// called any number of times.
void registerAll();

/// The default extension profile's bytes.
QByteArray extensionProfile();

} // namespace resources
