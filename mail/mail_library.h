// GMime for the mail readers and writers: started by the first MailLibrary
// of the process, stopped when the last one goes, so that a process that is
// done with mail leaves nothing of GMime behind.
#pragma once

namespace tnefmail {

class MailLibrary {
public:
    MailLibrary();
    ~MailLibrary();
    MailLibrary(const MailLibrary&) = delete;
    MailLibrary& operator=(const MailLibrary&) = delete;
};

}  // namespace tnefmail
