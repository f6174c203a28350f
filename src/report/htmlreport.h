// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QTextStream;

namespace epr {

struct ReportData;

void writeHtmlReport(QTextStream &out, const ReportData &data);

} // namespace epr
