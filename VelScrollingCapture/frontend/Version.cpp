#include <VelScrollingCapture/frontend/Version.h>

const double VelScrollingCaptureVersionNumber = 1.0;

const unsigned char VelScrollingCaptureVersionString[] =
    "@(#)PROGRAM:VelScrollingCapture  PROJECT:VelScrollingCapture-1\n";
