#pragma once

/// Marks what the shared library exports; everything else keeps hidden visibility.
#if defined(_WIN32) && !defined(META_ANALYSIS_STATIC)
#ifdef meta_analysis_EXPORTS
#define META_ANALYSIS_EXPORT __declspec(dllexport)
#else
#define META_ANALYSIS_EXPORT __declspec(dllimport)
#endif
#elif defined(__GNUC__)
#define META_ANALYSIS_EXPORT __attribute__((visibility("default")))
#else
#define META_ANALYSIS_EXPORT
#endif

/// Marks a class of the library's own within an exported class, which would pass its visibility on.
#ifdef __GNUC__
#define META_ANALYSIS_HIDDEN __attribute__((visibility("hidden")))
#else
#define META_ANALYSIS_HIDDEN
#endif
