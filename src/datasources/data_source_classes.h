#pragma once

#include "app/Utvynapp.h"
#include "platform/controls/image_lists.h"
#include "platform/system/messages.h"
#include "platform/system/shared_library.h"

namespace vyn {

// The registered data-source classes: what dlt_Class links can look their values up in, by name.
//
// Names compare without regard to case; each class has its place, a method that makes its component, and a picture for
// the buttons of its links. "SEARCH" is there from the start: it stands for the search screens, and makes nothing.
// Main thread only.

// Makes a component of a class for a link. Gives the component and the window handle that answers for it
// (datasources/messages.h); a null component or a 0 handle is no component.
using TVynDataSourceCreateMethod = void (*)(TVynApp* app, const AnsiString& className, TComponent* owner,
                                            TComponent*& component, HWND& handle);

// The entry of the search screens, and the pictures that classes get, 16 pixels square.
constexpr char CT_VynSearchClass[] = "SEARCH";
constexpr char CT_BitmapSearch[] = "LUPA_16_16";
constexpr char CT_BitmapClass[] = "CLASE_16_16";

// A name that is registered already keeps its place, gets the new method, and its picture anew.
void VynDataSource_RegisterClassName(const AnsiString& name, TVynDataSourceCreateMethod create);
// A name that is not registered is passed over.
void VynDataSource_UnRegisterClassName(const AnsiString& name);
// Removes every class that the method makes.
void VynDataSource_UnRegisterCreateClass(TVynDataSourceCreateMethod create);
// Null for an unknown name.
TVynDataSourceCreateMethod VynDataSource_GetCreateClassMethod(const AnsiString& name);
// Replaces the strings by the names, in the order of their registration.
void VynDataSource_GetRegisteredClasses(TStrings& names);
// Null for an unknown name, and while the class has no picture. The class's own.
TImageList* VynDataSource_FindImageList(const AnsiString& name);

// Pictures. An unknown class raises Exception "VynDataSource -> Classe no registrada: " + name.
void VynDataSource_AddImageBitmap(const AnsiString& name, const TBitmap& bitmap);
// A bitmap that a module carries (0: this library). A resource is an exported symbol VYN_BITMAP_<NAME>, or
// VYN_BITMAP_<number>, of type VynModuleBitmap; one that is not there raises Exception.
struct VynModuleBitmap {
    const unsigned char* Bytes;  // a BMP file
    size_t Size;
};
void VynDataSource_AddImageBitmapFromResName(const AnsiString& name, HMODULE module, const AnsiString& resource);
void VynDataSource_AddImageBitmapFromResID(const AnsiString& name, HMODULE module, int resource);
// The other class's pictures; nothing when it has none.
void VynDataSource_AddImageBitmapFromOtherClass(const AnsiString& name, const AnsiString& otherName);

// Replaces the list's pictures by a bitmap, of which the colour of the lower left pixel is see-through. The list takes
// the bitmap's size; a bitmap that is a whole number of times as wide as it is high is a row of square pictures, for
// the states of a button.
void AddBitmapToImageList(TCustomImageList& images, const TBitmap& bitmap);

// The package's start and end of this registry and of the list of live component lists.
void InitializeVynDataSources();
void FinalizeVynDataSources();

}  // namespace vyn
