"""The version of the package, which is that of the library."""

__version__ = "0.1.0"
