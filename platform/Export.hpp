#pragma once

/// Marks what libvigilkit.so shows to hosts and plug-ins; everything else in it stays hidden.
#define VIGIL_KIT __attribute__((visibility("default")))
