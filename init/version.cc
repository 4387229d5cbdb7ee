// Tells an executable in an image or on a unit: strings onu-cgi | grep '^onu '. No program reads
// it; the linker is told to keep it (init/CMakeLists.txt). The zero byte parts it from what stands
// before it in the file.

extern "C" {
extern const char kVersionText[];
const char kVersionText[] = "\0onu " ONU_VERSION;
}
