#include "cli/report_output.h"

#include <unistd.h>

#include <cerrno>

namespace {

ssize_t sink_write(void* cookie, const char* data, size_t size) {
    auto* out = static_cast<report_output*>(cookie);
    size_t done = 0;
    while (out->error == 0 && done < size) {
        ssize_t n = write(fileno(out->target), data + done, size - done);
        if (n > 0) done += size_t(n);
        else if (n < 0 && errno == EINTR) continue;
        else out->error = n < 0 ? errno : EIO;
    }
    // After a failure the rest is dropped: the run tells it once, at its end.
    return ssize_t(size);
}

}  // namespace

void report_output_open(report_output* out, FILE* target) {
    out->target = target;
    out->error = 0;
    out->stream = fopencookie(out, "w", cookie_io_functions_t{nullptr, sink_write, nullptr, nullptr});
    if (!out->stream) {
        out->stream = target;
        return;
    }
    // A terminal gets each line when it is complete, as standard output would.
    if (isatty(fileno(target))) setvbuf(out->stream, nullptr, _IOLBF, 0);
    if (target == stdout) stdout = out->stream;
}

int report_output_close(report_output* out) {
    bool is_stdout = out->stream == stdout || out->target == stdout;
    if (out->stream != out->target) {
        if (out->stream == stdout) stdout = out->target;
        std::fclose(out->stream);
    } else if ((std::fflush(out->target) != 0 || std::ferror(out->target)) && out->error == 0) {
        out->error = errno ? errno : EIO;  // without a sink the cause may be lost
    }
    if (!is_stdout && std::fclose(out->target) != 0 && out->error == 0) out->error = errno;
    out->stream = out->target = nullptr;
    return out->error;
}
