/// @file progress.h
/// An optional record of how far a compression has come, which other threads may read.
#pragma once

#include <cstdint>

struct KilnProgress;

/// Makes a record in *progress. Failures of its mutex end the process with a message.
void TesselInitProgressStruct(KilnProgress** progress);
/// The share of the work that is done, 0 to 1. Yields the processor to those who do it.
float TesselGetProgress(KilnProgress** progress);
/// Releases the record and sets *progress to null.
void TesselFinaliseProgressStruct(KilnProgress** progress);

/// Starts the count anew, at a work of so many pixels. Accepts null, as the next.
void kilnResetProgress(KilnProgress* progress, std::uint64_t pixels);
void kilnAdvanceProgress(KilnProgress* progress, std::uint64_t pixels);
