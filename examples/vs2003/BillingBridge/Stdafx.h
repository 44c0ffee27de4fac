// stdafx.h : include file for standard system include files,
// or project include files that are used frequently,
// but are changed infrequently

#pragma once

#using <mscorlib.dll>
