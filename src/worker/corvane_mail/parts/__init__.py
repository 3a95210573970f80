"""The parts of a message: header fields, transfer encodings, structure."""
