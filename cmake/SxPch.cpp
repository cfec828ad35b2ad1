// The source of the shared precompiled headers (cmake/SxPch.cmake); it adds no code.
