// Opening an input and walking its messages.
#include "mail/mail_input.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include "mail/file_stream.h"
#include "mail/scratch_file.h"

namespace tnefmail {

namespace {

// Copies standard input into a scratch file; -1 on failure.
int spoolStandardInput(std::string* error) {
    int fd = makeScratchFile(error);
    if (fd < 0) return -1;
    char buffer[65536];
    for (;;) {
        ssize_t n = ::read(STDIN_FILENO, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) {
            *error = std::string("cannot read standard input: ") + std::strerror(errno);
            break;
        }
        if (n == 0) return ::lseek(fd, 0, SEEK_SET) == 0 ? fd : (::close(fd), -1);
        if (!writeAll(fd, buffer, static_cast<size_t>(n))) {
            *error = std::string("cannot spool standard input: ") + std::strerror(errno);
            break;
        }
    }
    ::close(fd);
    return -1;
}

InputKind kindOfDescriptor(int fd) {
    char head[kKindHeadBytes];
    ssize_t got = ::pread(fd, head, sizeof head, 0);
    return detectKindOfHead(std::string_view(head, got > 0 ? static_cast<size_t>(got) : 0));
}

int64_t fileSize(int fd) {
    struct stat info {};
    return ::fstat(fd, &info) == 0 ? static_cast<int64_t>(info.st_size) : 0;
}

}  // namespace

std::unique_ptr<MailInput> MailInput::open(const std::string& path, std::string* error) {
    std::unique_ptr<MailInput> input(new MailInput());
    input->path_ = path;
    if (path != "-" && isMaildir(path)) {
        input->kind_ = InputKind::kMaildir;
        return input;
    }
    if (path == "-") {
        input->fd_ = spoolStandardInput(error);
    } else {
        input->fd_ = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
        if (input->fd_ < 0) *error = std::string("cannot read: ") + std::strerror(errno);
    }
    if (input->fd_ < 0) return nullptr;
    struct stat info {};
    if (::fstat(input->fd_, &info) == 0 && S_ISDIR(info.st_mode)) {
        *error = "cannot read: is a directory (and not a maildir)";
        return nullptr;
    }
    input->kind_ = kindOfDescriptor(input->fd_);
    return input;
}

MailInput::~MailInput() {
    if (fd_ >= 0) ::close(fd_);
}

std::vector<std::string> MailInput::maildirFiles() const {
    std::vector<std::string> files;
    for (const char* sub : {"cur", "new"}) {
        std::vector<std::string> found;
        std::error_code ec;
        for (auto it = std::filesystem::directory_iterator(std::filesystem::path(path_) / sub, ec);
             !ec && it != std::filesystem::directory_iterator(); it.increment(ec)) {
            std::error_code typeError;
            if (it->is_regular_file(typeError)) found.push_back(it->path().string());
        }
        std::sort(found.begin(), found.end());
        files.insert(files.end(), found.begin(), found.end());
    }
    return files;
}

void MailInput::readFile(int fd, const std::string& file, InputKind kind, size_t& number,
                         size_t& partNumber, const std::function<bool(MailMessage&)>& visit,
                         bool* stop) {
    int64_t size = fileSize(fd);
    GRef<GMimeStream> stream = fileRangeStream(fd, 0, size);
    GRef<GMimeParser> parser = GRef<GMimeParser>::adopt(g_mime_parser_new_with_stream(stream.get()));
    g_mime_parser_set_persist_stream(parser.get(), TRUE);
    bool mbox = kind == InputKind::kMbox;
    g_mime_parser_set_format(parser.get(), mbox ? GMIME_FORMAT_MBOX : GMIME_FORMAT_MESSAGE);
    // A message is handed on once the next one is found: its bytes end where
    // the next one's "From " line starts, or at the end of the file, so that
    // the messages cover every byte of it.
    GRef<GMimeMessage> held;
    MailMessage pending;
    auto handOn = [&](int64_t end) {
        pending.end = end;
        pending.lastInFile = end == size;
        if (!visit(pending)) *stop = true;
        held.reset();
    };
    bool any = false;
    while (!*stop && !g_mime_parser_eos(parser.get())) {
        GRef<GMimeMessage> message =
            GRef<GMimeMessage>::adopt(g_mime_parser_construct_message(parser.get(), nullptr));
        if (!message) break;
        int64_t begin = mbox && any ? g_mime_parser_get_mbox_marker_offset(parser.get()) : 0;
        if (held) handOn(begin);
        if (*stop) break;
        any = true;
        pending = MailMessage();
        pending.info.number = number++;
        pending.info.file = file;
        describeMessage(message.get(), &pending.info);
        pending.message = message.get();
        pending.fd = fd;
        pending.begin = begin;
        pending.headersBegin = mbox ? g_mime_parser_get_headers_begin(parser.get()) : 0;
        pending.tnefParts = findTnefParts(message.get(), pending.info, partNumber);
        partNumber += pending.tnefParts.size();
        pending.info.tnefParts = pending.tnefParts.size();
        for (TnefPart& part : pending.tnefParts) part.message.tnefParts = pending.tnefParts.size();
        held = std::move(message);
        if (!mbox) break;
    }
    if (held && !*stop) handOn(size);
    if (!any && !*stop) {  // no message GMime can make out: the bytes, with no TNEF part
        MailMessage whole;
        whole.info.number = number++;
        whole.info.file = file;
        whole.fd = fd;
        whole.end = size;
        if (!visit(whole)) *stop = true;
    }
}

void MailInput::forEachMessage(const std::function<bool(MailMessage&)>& visit) {
    size_t number = 0;
    size_t partNumber = 0;
    bool stop = false;
    if (kind_ != InputKind::kMaildir) {
        readFile(fd_, isStandardInput() ? "standard input" : path_, kind_, number, partNumber, visit,
                 &stop);
        return;
    }
    for (const std::string& file : maildirFiles()) {
        if (stop) break;
        int fd = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
        if (fd < 0) continue;  // delivered or expunged since the folder was read
        readFile(fd, file, InputKind::kMessage, number, partNumber, visit, &stop);
        ::close(fd);
    }
}

void describeMessage(GMimeMessage* message, MessageInfo* info) {
    if (const char* id = g_mime_message_get_message_id(message)) info->messageId = "<" + std::string(id) + ">";
    if (const char* subject = g_mime_message_get_subject(message)) info->subject = subject;
    InternetAddressList* from = g_mime_message_get_from(message);
    if (from != nullptr && internet_address_list_length(from) > 0) {
        char* text = internet_address_list_to_string(from, nullptr, FALSE);
        if (text != nullptr) info->from = text;
        g_free(text);
    }
}

}  // namespace tnefmail
