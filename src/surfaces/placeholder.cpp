// Replaced by the folder's first file.
