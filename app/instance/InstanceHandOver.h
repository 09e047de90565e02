#pragma once

#include <QString>
#include <QStringList>

// The hand-over of a second start, done before any application object exists: it needs no
// display, so a second start ends in the time it takes to load the program, not in the time
// it takes to connect to the window system as well.
//
// Connects to the running instance of this user (UniqueKey as for CSingleApplication) and
// writes the message HandOverMessage makes of Arguments (the program first); a start whose
// file does not exist connects and writes nothing. True when an instance took the
// connection, so this start is done; false when none answered, and the normal start decides
// (it also cleans up what a crashed instance left behind).
[[nodiscard]] bool HandOverToRunningInstance(const QString& UniqueKey, const QStringList& Arguments);
