#pragma once

/// @file
/// Everything that the library exports in C++.

#include <VelScrollingCapture/borders/BasicBorderDetection.h>
#include <VelScrollingCapture/borders/BorderDetection.h>
#include <VelScrollingCapture/borders/StitchingModifier.h>
#include <VelScrollingCapture/core/IImageProvider.h>
#include <VelScrollingCapture/core/IStitcher.h>
#include <VelScrollingCapture/core/IStitcherListener.h>
#include <VelScrollingCapture/core/ITranslationDetector.h>
#include <VelScrollingCapture/core/Messages.h>
#include <VelScrollingCapture/core/ScrollOrientation.h>
#include <VelScrollingCapture/core/Translation.h>
#include <VelScrollingCapture/core/Utilities.h>
#include <VelScrollingCapture/detection/phase/PhaseCorrelationTranslationDetector.h>
#include <VelScrollingCapture/frontend/PlatformImage.h>
#include <VelScrollingCapture/frontend/ProgressListener.h>
#include <VelScrollingCapture/frontend/ScrollingProgressDelegate.h>
#include <VelScrollingCapture/frontend/StitcherAdapter.h>
#include <VelScrollingCapture/frontend/VelScrollingCapture.h>
#include <VelScrollingCapture/frontend/Version.h>
#include <VelScrollingCapture/preview/PreviewImage.h>
#include <VelScrollingCapture/seams/Layout.h>
#include <VelScrollingCapture/seams/Seam.h>
#include <VelScrollingCapture/similarity/RepeatFilter.h>
#include <VelScrollingCapture/stitching/BasicStitcher.h>
#include <VelScrollingCapture/stitching/StitcherFactory.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>
#include <VelScrollingCapture/storage/MemoryEfficientImageProvider.h>
