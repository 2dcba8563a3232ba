// The host's handles: pointers to things that the host owns and that nobody here looks into.
//
// Handles are created, read and released only through the host calls of this folder, on the host's thread.
#pragma once

struct REALstringStruct;        ///< A string, counted by the host and tagged with its text encoding.
struct REALobjectStruct;        ///< An object: an instance of a class, a variant, a control, a picture and so on.
struct REALarrayStruct;         ///< A one-dimensional array.
struct REALclassRefStruct;      ///< A reference to a class.
struct RuntimeText;             ///< A text value.
struct REALpictureDescription;  ///< The record that describes the memory of a locked picture.

// The system's own records for files in the days before paths; passed on by address only.
struct FSRef;
struct HFSUniStr255;
