// The module's version, for whoever looks at the library without asking it. The number is the bundle's own.

#ifndef VIGIL_BUNDLE_VERSION
#error "VIGIL_BUNDLE_VERSION is set by the build"
#endif

#define VIGIL_TEXT_(x) #x
#define VIGIL_TEXT(x) VIGIL_TEXT_(x)

#define VIGIL_SHOWN __attribute__((visibility("default")))

extern "C" {
extern VIGIL_SHOWN const char VigilPlugInVersionString[];
extern VIGIL_SHOWN const double VigilPlugInVersionNumber;

const char VigilPlugInVersionString[] =
    "@(#)PROGRAM:VigilPlugIn  PROJECT:VigilPlugIn-" VIGIL_TEXT(VIGIL_BUNDLE_VERSION) "\n";
const double VigilPlugInVersionNumber = VIGIL_BUNDLE_VERSION;
}
