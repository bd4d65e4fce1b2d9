// make-big-stream OUTPUT SIZE [--attachments N] [--small BYTES] [--sparse]
//
// Writes a TNEF stream of exactly SIZE bytes (suffixes K, M, G) with N
// attachments (default 3): the first holds the bulk, the others BYTES each
// (default 64K). Prints the layout as one line of JSON.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "bench/big_stream.h"

namespace {

// The path as a JSON string body.
std::string jsonEscaped(const std::string& text) {
    std::string out;
    for (char c : text) {
        if (c == '"' || c == '\\') out += '\\';
        if (static_cast<unsigned char>(c) < 0x20) {
            char code[8];
            std::snprintf(code, sizeof code, "\\u%04x", c);
            out += code;
            continue;
        }
        out += c;
    }
    return out;
}

int usage() {
    std::fprintf(stderr,
                 "usage: make-big-stream OUTPUT SIZE [--attachments N] [--small BYTES] [--sparse]\n"
                 "  SIZE and BYTES take the suffixes K, M and G (binary multiples)\n");
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) return usage();
    tnefbench::BigStreamPlan plan;
    std::string output = argv[1];
    if (!tnefbench::parseByteSize(argv[2], &plan.fileBytes)) return usage();
    for (int i = 3; i < argc; ++i) {
        std::string arg = argv[i];
        if (arg == "--sparse") {
            plan.sparse = true;
        } else if (arg == "--attachments" && i + 1 < argc) {
            char* end = nullptr;
            long n = std::strtol(argv[++i], &end, 10);
            if (*end != '\0' || n < 1 || n > 1000) return usage();
            plan.attachments = static_cast<int>(n);
        } else if (arg == "--small" && i + 1 < argc) {
            uint64_t bytes = 0;
            if (!tnefbench::parseByteSize(argv[++i], &bytes) || bytes > UINT32_MAX) return usage();
            plan.smallAttachmentBytes = static_cast<uint32_t>(bytes);
        } else {
            return usage();
        }
    }
    tnefbench::BigStreamLayout layout;
    std::string error;
    if (!tnefbench::writeBigStream(output, plan, &layout, &error)) {
        std::fprintf(stderr, "make-big-stream: %s\n", error.c_str());
        return 2;
    }
    std::printf("{\"file\": \"%s\", \"bytes\": %llu, \"largeDataOffset\": %lld, "
                "\"largeDataBytes\": %u, \"subfiles\": %d, \"sparse\": %s}\n",
                jsonEscaped(output).c_str(), static_cast<unsigned long long>(layout.fileBytes),
                static_cast<long long>(layout.largeDataOffset), layout.largeDataBytes,
                layout.subfiles, plan.sparse ? "true" : "false");
    return 0;
}
