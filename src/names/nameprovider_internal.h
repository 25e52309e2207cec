// The registries' place in the initialisation and closing sequences.
#ifndef YXTOOLS_NAMES_NAMEPROVIDER_INTERNAL_H
#define YXTOOLS_NAMES_NAMEPROVIDER_INTERNAL_H

// With true: new, empty registries, by string first, by id second (a failed allocation stores
// null and the other is still tried). Registries that exist already are released first. With
// false: releases the registry by string, then the one by id, and clears the pointers.
void YXNameProvider_InitRegistries(bool bCreate);

#endif
