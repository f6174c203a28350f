// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

QT_FORWARD_DECLARE_CLASS(QIcon)

namespace epr {
class MainWindow;
}

/// The steps of the program's start that the entry point calls one after the other.
namespace epr::startup {

struct Arguments {
    QStringList folders; ///< to add to the list, in command-line order
    bool autostart = false; ///< scan as soon as the window is shown
};

/// Makes the icons and the style sheet available under ":/icons" and ":/style".
void loadResources();

/// Ends the process if it is asked for help or the version, which needs no display. Call it before there is any
/// application object.
void answerQuestions(int &argc, char **argv);

/// Parses the command line, program name first. Asked for help or the version, or given an unknown option, it ends the
/// process.
Arguments processArguments(const QStringList &arguments);

/// Adds the folders, shows the window and then starts the scan, if that was asked for, so that what keeps it from
/// starting is said in front of the window.
void open(MainWindow &window, const Arguments &arguments);

/// The program's icon in every size that has a drawing or a rendering of its own.
QIcon applicationIcon();

/// Where the analysis cache and the undo records live. A failure shows when they are opened.
void createDataFolder();

} // namespace epr::startup
