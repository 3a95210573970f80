"""Text from the bytes of a message."""
