# Installation: headers as <library/...>, a CMake package with targets tarn::..., and a pkg-config file for each library.
