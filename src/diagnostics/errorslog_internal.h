// The default error log's place in the initialisation and closing sequences.
#ifndef YXTOOLS_DIAGNOSTICS_ERRORSLOG_INTERNAL_H
#define YXTOOLS_DIAGNOSTICS_ERRORSLOG_INTERNAL_H

// Creates the default log (maximum 5) and stores it; stores null when the allocation fails. A
// default log that already exists is released first.
void YXErrorsLog_CreateDefault();
// Releases the default log, if there is one, and clears the pointer.
void YXErrorsLog_DestroyDefault();

#endif
