"""The version of the package, which is also that of the library."""

__version__ = "0.1.0"
