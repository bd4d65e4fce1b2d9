// The module's one export: the table of six operations.
#include "reader/operations.h"

extern "C" __attribute__((visibility("default"))) void tnefGetContainerReaderInterfaceEx(
    ReaderInterface* table) {
    table->tnefOpenContainer = tnefOpenContainer;
    table->tnefCloseContainer = tnefCloseContainer;
    table->tnefGetContainerInfo = tnefGetContainerInfo;
    table->tnefGetSubfileInfo = tnefGetSubfileInfo;
    table->tnefGetSubfileMetadata = tnefGetSubfileMetadata;
    table->tnefExtractSubfile = tnefExtractSubfile;
}
