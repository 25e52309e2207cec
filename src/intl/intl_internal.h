// The process-wide YXIntl object, for the library frame.
#ifndef YXTOOLS_INTL_INTERNAL_H
#define YXTOOLS_INTL_INTERNAL_H

// Makes the object when there is none; true when one exists afterwards.
bool YXIntl_Create();
// Destroys the object, if any, and leaves the pointer null.
void YXIntl_Destroy();

#endif
