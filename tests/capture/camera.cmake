# Tests of the camera link and its frame windows join here.
