// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// The language of the program's texts.
namespace epr::translation {

/// Installs the catalogues of the operator's language that are compiled in, else the English plurals. The environment
/// variable ECHOPRUNE_TRANSLATION names a catalogue file that goes before them, for translators to try their work.
/// Needs the application object; call it before any text is asked for.
void install();

} // namespace epr::translation
