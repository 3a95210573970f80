"""Messages and files inside other data."""
