// The library's one export: the table of storage operations.
#include <string.h>

#include "oleio/ole_interface.h"
#include "oleio/storage.h"

extern "C" __attribute__((visibility("default"))) int32_t GetOLEInterface(OleInterface* table) {
    if (table == nullptr) return 0;
    memset(table, 0, sizeof *table);  // the slots no caller uses stay empty
    table->openStorage = cfbOpenStorage;
    table->findStream = cfbFindStream;
    table->closeStorage = cfbCloseStorage;
    table->resetStream = cfbResetStream;
    table->openStream = cfbOpenStream;
    table->closeStream = cfbCloseStream;
    return 1;
}
