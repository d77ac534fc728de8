#pragma once

#include "protocol/legacy_link.h"
#include "seams/xml.h"

namespace parvex {

// Reports are made by the legacy application's report server, late bound, for the tags that the command names. The
// server is created by the first of these commands and kept by the instance; a held one is reset.

/// One report. The success envelope with "No Error" or "No Report was generated" in returnError itself, deliberately:
/// front ends read it there. A run-time failure is answered with "Error in getReport. " and its description.
xml::Document GetReport(LegacyLink& link, const xml::Document& command);

/// The reports that the VALUE elements of the one parameter reportName name, in one document. As GetReport, also with
/// "No Report names were specified"; a run-time failure is answered with "Error in getReports(). " and its description.
xml::Document GetReports(LegacyLink& link, const xml::Document& command);

/// TAGS with a TAG for each tag that has a submittal template, holding the root element of its report with drawings
/// embedded. Run-time failures end the call.
xml::Document GetSubmittal(LegacyLink& link, const xml::Document& command);

}  // namespace parvex
