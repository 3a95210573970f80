"""The attachments of a message."""
