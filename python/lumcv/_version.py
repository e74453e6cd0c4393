"""The version of the library that this package was made with."""

VERSION = "0.1.0"
