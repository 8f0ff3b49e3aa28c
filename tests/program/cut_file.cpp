// A library to load before a program: it cuts the file BRINDLE_CUT_FILE to 700 bytes when the
// program is about to read from it for the BRINDLE_CUT_READ-th time.
#include <cstdlib>
#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr off_t sRemainingBytes = 700;

bool IsCutFile(int descriptor, const char* path) {
    struct stat own = {}, cut = {};
    return fstat(descriptor, &own) == 0 && stat(path, &cut) == 0 && own.st_ino == cut.st_ino &&
           own.st_dev == cut.st_dev;
}

} // namespace

// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): the system's are reserved
extern "C" ssize_t read(int descriptor, void* destination, size_t size) {
    using Read = ssize_t(int, void*, size_t);
    static auto* const next = reinterpret_cast<Read*>(dlsym(RTLD_NEXT, "read"));
    static const char* const path = std::getenv("BRINDLE_CUT_FILE");
    static const char* const number = std::getenv("BRINDLE_CUT_READ");
    static int readsLeft = path != nullptr && number != nullptr ? std::atoi(number) : 0;
    if (readsLeft > 0 && IsCutFile(descriptor, path) && --readsLeft == 0) {
        static_cast<void>(truncate(path, sRemainingBytes));
    }
    return next(descriptor, destination, size);
}
