// What the tests of loading load.

extern "C" __attribute__((visibility("default"))) int loadedModuleIsHere() { return 1; }
